// The priority of the program's process, from the Priority menu: five classes, mapped to nice
// values of the system. Raising the priority above normal needs the privilege to do so.
#pragma once

#include <cstdint>

namespace moremate {

enum class ProcessPriority : uint8_t { High, AboveNormal, Normal, BelowNormal, Low };

// -10, -5, 0, 5 and 10.
int NiceValue(ProcessPriority priority);

// The class nearest to the calling thread's nice value.
ProcessPriority CurrentPriority();

// Sets the nice value of every thread of the process. False, with errno set, when the system
// refuses it for some thread.
bool SetProcessPriority(ProcessPriority priority);

}  // namespace moremate
