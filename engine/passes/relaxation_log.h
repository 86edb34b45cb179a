// The two logs of the relaxation: the before/after lines of each step and the engine log's line
// about a time-dependent relaxation near the limit. Each file has its own process-wide lock.
#pragma once

#include <cstdint>
#include <string>

namespace moremate {

// Appends "<local time> BEFORE th=<thread> <text>" (or "AFTER ") to
// "TryRelaxSpecialHeuristics.log" in `folder`.
void AppendRelaxationLog(const std::string& folder, bool before, int16_t thread, const std::string& setText);

// Appends the time-dependent relaxation line for `calcTime` to the engine log at `path`.
void AppendTimeDependentLine(const std::string& path, int64_t calcTime, int64_t limit);

}  // namespace moremate
