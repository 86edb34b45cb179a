// The threads of this process, for the settings that the system keeps per thread (the nice
// value and the processor affinity on Linux): a process-wide change is made on each of them, and
// threads started later inherit it from the thread that starts them.
#pragma once

#include <sys/types.h>

#include <functional>

namespace moremate {

// Calls `change` with the id of every thread of the process; true when it succeeded for all.
bool ForEachProcessThread(const std::function<bool(pid_t)>& change);

}  // namespace moremate
