// The text of the progress area while a run is active: the pass with its share of the first
// moves done and its heuristic set, the threads and the global register's memory, the time and
// the speed, and the lines the main threads analyse (all, or the one peeked at).
#pragma once

#include <QString>
#include <cstdint>
#include <string>

#include "engine/run/progress_tick.h"

namespace moremate::ui {

// `peek` 0 shows the lines of all threads, k the k-th line listed ("A" and k on the peek tool).
QString ProgressAreaText(const TRunProgress& progress, uint64_t globalRegisterBytes, int language,
                         int peek = 0);

// The observed lines ("Observed: line | line | ...") cut down to the `peek`-th line, or all of
// them for 0; empty when there is no such line.
std::string PeekedLines(const std::string& observed, int peek);

}  // namespace moremate::ui
