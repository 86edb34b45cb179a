// The process-wide crash handler: fatal signals (SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, and a
// stack overflow, caught on a signal stack of its own in the main thread and in every thread
// started through StartThread) and exceptions that nobody catches (std::terminate) end in a crash
// log in the working folder, a message on stderr and the exit status kExitCrash.
#pragma once

#include <filesystem>

#include "settings/options.h"

namespace moremate::diagnostics {

inline constexpr int kExitCrash = 3;
// The argument that asks a dialog program to show the crash message that follows it.
inline constexpr const char* kShowCrashArgument = "--show-crash";

// Does nothing with UseSystemCrashHandler=1: crashes are left to the system then. Call it early on
// the main thread, before other threads start. With a `dialogProgram` the message is shown in a
// dialog too: once the log is written, the crashed process is replaced (execv) by
// `dialogProgram kShowCrashArgument <message>`, which shows it and ends with kExitCrash. A
// crashed process cannot safely run an interface library; a fresh program image can.
void InstallCrashHandler(const TOptions& options, const std::filesystem::path& dialogProgram = {});

}  // namespace moremate::diagnostics
