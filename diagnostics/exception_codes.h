// The exception codes of the crash log with their names, and the code a fatal signal stands for.
#pragma once

#include <cstdint>

namespace moremate::diagnostics {

inline constexpr uint32_t kAccessViolation = 0xC0000005;
inline constexpr uint32_t kStackOverflow = 0xC00000FD;
inline constexpr uint32_t kCppException = 0xE06D7363;
// What the C runtime raises for abort(); outside the table, so "Unknown Exception".
inline constexpr uint32_t kFatalAppExit = 0x40000015;

// The name of `code`, "Unknown Exception" for a code without one.
const char* ExceptionName(uint32_t code);

// The code of signal `signal` with its `si_code`; `nearStackPointer` tells that the faulting
// address lies next to the stack pointer, which makes a SIGSEGV a stack overflow.
uint32_t ExceptionCodeOfSignal(int signal, int siCode, bool nearStackPointer);

// "SIGSEGV" and so on; "signal" for one the handler does not catch.
const char* SignalName(int signal);

}  // namespace moremate::diagnostics
