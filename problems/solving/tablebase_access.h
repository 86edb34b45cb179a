// The online tablebase for the front ends that solve: made once per command or window, so that an
// answer is asked once and a missing network is found (and told) once.
#pragma once

#include <memory>

#include "settings/options.h"
#include "settings/reporter.h"
#include "tablebase/tablebase_service.h"

namespace moremate {

// None when the option LichessLevels is -1 (the tablebase is off for everything).
std::unique_ptr<CTablebaseService> TablebaseForRuns(const TOptions& options, CReporter& reporter);

// The client of `service`, or none.
inline CLiChess* LiChessOf(const std::unique_ptr<CTablebaseService>& service) {
    return service ? &service->LiChess() : nullptr;
}

}  // namespace moremate
