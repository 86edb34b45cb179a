// The processors the program may run on: the process's affinity mask, and the processor menu
// that shows one checked item per processor in the mask and toggles one at a time.
#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "reporter.h"

namespace moremate {

// One bit per processor, as many as the system's affinity calls take.
inline constexpr std::size_t kMaxProcessors = 1024;
using TProcessorMask = std::bitset<kMaxProcessors>;

inline constexpr const char* kAffinityChangedOutside =
    "Settings were changed outside the program.\nRetry the attempt to change settings.";

std::optional<TProcessorMask> ReadProcessAffinity();
// Sets the mask of every thread of the process.
bool WriteProcessAffinity(const TProcessorMask& mask);

// Items are numbered as the system numbers its processors, from 0.
std::string ProcessorMenuText(std::size_t processor, int languageId);

// The mask with `processor` toggled, or nullopt when the menu's check marks no longer match the
// current mask: something else changed the affinity since the menu was drawn, and toggling one
// item of a stale menu would silently undo that change. A processor beyond kMaxProcessors throws
// std::out_of_range.
std::optional<TProcessorMask> ToggledAffinity(const std::vector<bool>& menuChecks, std::size_t processor,
                                              const TProcessorMask& current);

// The menu command. On a stale menu it reports kAffinityChangedOutside and changes nothing; the
// caller redraws the menu from ReadProcessAffinity in either case. True when the mask was changed.
bool ToggleProcessor(const std::vector<bool>& menuChecks, std::size_t processor, CReporter& reporter,
                     int languageId);

}  // namespace moremate
