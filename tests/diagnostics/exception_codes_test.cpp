#include "diagnostics/exception_codes.h"

#include <gtest/gtest.h>

#include <csignal>

namespace moremate::diagnostics {
namespace {

TEST(ExceptionCodes, SignalsMapOntoTheTable) {
    const struct {
        int signal, siCode;
        bool nearStackPointer;
        const char* name;
    } cases[] = {
        {SIGSEGV, SEGV_MAPERR, false, "Access Violation"},
        {SIGSEGV, SEGV_ACCERR, true, "Stack Overflow"},
        {SIGBUS, BUS_ADRALN, false, "Datatype Misalignment"},
        {SIGBUS, BUS_ADRERR, false, "In Page Error"},
        {SIGILL, ILL_ILLOPC, false, "Illegal Instruction"},
        {SIGILL, ILL_PRVOPC, false, "Private Instruction"},
        {SIGFPE, FPE_INTDIV, false, "Integer Divide By Zero"},
        {SIGFPE, FPE_INTOVF, false, "Integer Overflow"},
        {SIGFPE, FPE_FLTDIV, false, "Float Divide By Zero"},
        {SIGFPE, FPE_FLTOVF, false, "Float Overflow"},
        {SIGFPE, FPE_FLTUND, false, "Float Underflow"},
        {SIGFPE, FPE_FLTRES, false, "Float Inexact Result"},
        {SIGFPE, FPE_FLTINV, false, "Float Invalid Operation"},
        {SIGFPE, FPE_FLTSUB, false, "Array Bounds Exceeded"},
        {SIGABRT, 0, false, "Unknown Exception"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(ExceptionName(ExceptionCodeOfSignal(c.signal, c.siCode, c.nearStackPointer)), c.name)
            << c.signal << " " << c.siCode;
    EXPECT_STREQ(ExceptionName(kCppException), "C++ Exception (using throw)");
    EXPECT_STREQ(ExceptionName(0x12345678), "Unknown Exception");
}

}  // namespace
}  // namespace moremate::diagnostics
