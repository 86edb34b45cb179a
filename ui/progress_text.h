// The text of the progress area while a run is active: the pass with its share of the first
// moves done and its heuristic set, the threads and the global register's memory, the time and
// the speed, and the lines the main threads analyse.
#pragma once

#include <QString>
#include <cstdint>

#include "engine/run/progress_tick.h"

namespace moremate::ui {

QString ProgressAreaText(const TRunProgress& progress, uint64_t globalRegisterBytes, int language);

}  // namespace moremate::ui
