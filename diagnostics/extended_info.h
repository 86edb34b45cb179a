// The extended info of the crash log: the state flags and counts of the solving run and of the
// interface, then the current problem and position.
#pragma once

#include "log_buffer.h"

namespace moremate::diagnostics {

void AppendExtendedInfo(CLogBuffer& log);

}  // namespace moremate::diagnostics
