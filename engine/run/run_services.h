// What the interface gives a solving run besides the problem: the control through which it stops,
// pauses and skips, the progress ticks, where the run's messages go, and the automatic save of its
// registers. Every part is optional.
#pragma once

#include "engine/passes/passes.h"
#include "progress_tick.h"
#include "settings/reporter.h"

namespace moremate {

class CRegisterAutoSave;
class CRunControl;

struct TRunServices {
    CRunControl* control = nullptr;
    CProgressTick::FOnTick onProgress;      // once a second while the search runs
    CReporter* reporter = nullptr;          // message boxes of the run
    CRegisterAutoSave* autoSave = nullptr;  // asked at every tick whether a save is due
};

// RunPasses under the services: the control reaches every search thread, and the ticks run
// from the start of the passes until they return. A failed automatic save is reported once the
// passes have returned. A root that the run's register already holds
// as proven "no mate" is not searched: the result comes with `fromRegister`.
TPassRunResult RunPassesWithServices(TPassRunRequest request, const TRunServices& services);

}  // namespace moremate
