#include "exception_codes.h"

#include <csignal>

namespace moremate::diagnostics {

namespace {

struct TExceptionName {
    uint32_t code;
    const char* name;
};

constexpr TExceptionName kNames[] = {
    {0xC0000005, "Access Violation"},
    {0x80000001, "Guard Page"},
    {0x80000002, "Datatype Misalignment"},
    {0x80000003, "Breakpoint"},
    {0x80000004, "Single Step"},
    {0xC0000006, "In Page Error"},
    {0xC0000008, "Invalid Handle"},
    {0xC000001D, "Illegal Instruction"},
    {0xC0000025, "Non-continuable Exceptiopn"},
    {0xC0000026, "Invalid Disposition"},
    {0xC000008C, "Array Bounds Exceeded"},
    {0xC000008D, "Float Denormal Operand"},
    {0xC000008E, "Float Divide By Zero"},
    {0xC000008F, "Float Inexact Result"},
    {0xC0000090, "Float Invalid Operation"},
    {0xC0000091, "Float Overflow"},
    {0xC0000092, "Float Stack Check"},
    {0xC0000093, "Float Underflow"},
    {0xC0000094, "Integer Divide By Zero"},
    {0xC0000095, "Integer Overflow"},
    {0xC0000096, "Private Instruction"},
    {0xC00000FD, "Stack Overflow"},
    {0xE06D7363, "C++ Exception (using throw)"},
};

uint32_t CodeOfFpe(int siCode) {
    switch (siCode) {
        case FPE_INTDIV:
            return 0xC0000094;
        case FPE_INTOVF:
            return 0xC0000095;
        case FPE_FLTDIV:
            return 0xC000008E;
        case FPE_FLTOVF:
            return 0xC0000091;
        case FPE_FLTUND:
            return 0xC0000093;
        case FPE_FLTRES:
            return 0xC000008F;
        case FPE_FLTSUB:
            return 0xC000008C;
        default:
            return 0xC0000090;  // FPE_FLTINV and whatever else the processor reports
    }
}

}  // namespace

const char* ExceptionName(uint32_t code) {
    for (const TExceptionName& entry : kNames)
        if (entry.code == code) return entry.name;
    return "Unknown Exception";
}

uint32_t ExceptionCodeOfSignal(int signal, int siCode, bool nearStackPointer) {
    switch (signal) {
        case SIGSEGV:
            return nearStackPointer ? kStackOverflow : kAccessViolation;
        case SIGBUS:
            return siCode == BUS_ADRALN ? 0x80000002 : 0xC0000006;
        case SIGILL:
            return siCode == ILL_PRVOPC || siCode == ILL_PRVREG ? 0xC0000096 : 0xC000001D;
        case SIGFPE:
            return CodeOfFpe(siCode);
        default:
            return kFatalAppExit;
    }
}

const char* SignalName(int signal) {
    switch (signal) {
        case SIGSEGV:
            return "SIGSEGV";
        case SIGBUS:
            return "SIGBUS";
        case SIGILL:
            return "SIGILL";
        case SIGFPE:
            return "SIGFPE";
        case SIGABRT:
            return "SIGABRT";
        default:
            return "signal";
    }
}

}  // namespace moremate::diagnostics
