// The register dump of the crash log: general purpose, control and segment registers of x86-64.
#pragma once

#include <ucontext.h>

#include "log_buffer.h"

namespace moremate::diagnostics {

void AppendRegisterDump(CLogBuffer& log, const ucontext_t& context);

}  // namespace moremate::diagnostics
