// What the interface gives a solving run besides the problem: the control through which it stops,
// pauses and skips, the progress ticks, and where the run's messages go. Every part is optional.
#pragma once

#include "engine/passes/passes.h"
#include "progress_tick.h"
#include "settings/reporter.h"

namespace moremate {

class CRunControl;

struct TRunServices {
    CRunControl* control = nullptr;
    CProgressTick::FOnTick onProgress;  // once a second while the search runs
    CReporter* reporter = nullptr;      // message boxes of the run
};

// RunPasses under the services: the control reaches every search thread, and the ticks run
// from the start of the passes until they return. A root that the run's register already holds
// as proven "no mate" is not searched: the result comes with `fromRegister`.
TPassRunResult RunPassesWithServices(TPassRunRequest request, const TRunServices& services);

}  // namespace moremate
