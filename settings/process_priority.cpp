#include "process_priority.h"

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>

#include "process_threads.h"

namespace moremate {

int NiceValue(ProcessPriority priority) {
    return 5 * (static_cast<int>(priority) - static_cast<int>(ProcessPriority::Normal));
}

ProcessPriority CurrentPriority() {
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, 0);
    const int level = (nice + (nice < 0 ? -2 : 2)) / 5 + static_cast<int>(ProcessPriority::Normal);
    return static_cast<ProcessPriority>(
        std::clamp(level, static_cast<int>(ProcessPriority::High), static_cast<int>(ProcessPriority::Low)));
}

bool SetProcessPriority(ProcessPriority priority) {
    const int nice = NiceValue(priority);
    return ForEachProcessThread(
        [nice](pid_t thread) { return setpriority(PRIO_PROCESS, static_cast<id_t>(thread), nice) == 0; });
}

}  // namespace moremate
