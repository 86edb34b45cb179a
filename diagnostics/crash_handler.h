// The process-wide crash handler: fatal signals (SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, and a
// stack overflow of the main thread, caught on a stack of its own) and exceptions that nobody
// catches (std::terminate) end in a crash log in the working folder, a message on stderr and the
// exit status kExitCrash.
#pragma once

#include "settings/options.h"

namespace moremate::diagnostics {

inline constexpr int kExitCrash = 3;

// Does nothing with UseSystemCrashHandler=1: crashes are left to the system then. Call it early on
// the main thread, before other threads start.
void InstallCrashHandler(const TOptions& options);

}  // namespace moremate::diagnostics
