// The online tablebase for the commands that solve: made once per command, so that an answer is
// asked once and a missing network is found (and told) once.
#pragma once

#include <memory>

#include "commands.h"
#include "tablebase/tablebase_service.h"

namespace moremate::cli {

// None when the option LichessLevels is -1 (the tablebase is off for everything).
std::unique_ptr<CTablebaseService> TablebaseForRuns(TProgramContext& context);

// The client of `service`, or none.
inline CLiChess* LiChessOf(const std::unique_ptr<CTablebaseService>& service) {
    return service ? &service->LiChess() : nullptr;
}

}  // namespace moremate::cli
