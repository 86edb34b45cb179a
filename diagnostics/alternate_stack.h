// The signal stacks the crash handler runs on: a fault from a stack overflow cannot be handled on
// the thread's own stack, so every thread gets one of its own (the main thread when the handler is
// installed, the others through StartThread's hooks, core/thread_start.h).
#pragma once

#include "core/thread_start.h"

namespace moremate::diagnostics {

// Gives the calling thread a signal stack of its own for the rest of its life.
void InstallAlternateStack();

// Give each thread started through StartThread a signal stack, given back when the thread ends
// for the next thread to start.
extern const TThreadHooks kAlternateStackHooks;

}  // namespace moremate::diagnostics
