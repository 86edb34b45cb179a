// The call stack of the crash log: the faulting thread's frames, each with its module, its
// demangled function name and the offset into it.
#pragma once

#include <ucontext.h>

#include "log_buffer.h"

namespace moremate::diagnostics {

// Reserves the memory the demangler writes into, so that a crash need not allocate it.
void PrepareCallStack();

// `signalFrame`: the context is the one a signal handler received (the first frame is the
// faulting instruction itself, not a return address).
void AppendCallStack(CLogBuffer& log, ucontext_t& context, bool signalFrame);

}  // namespace moremate::diagnostics
