// The order in which the solver tries White's first moves: the static move ordering, then the
// problem's preferred moves (its sort indications) moved to the front in their own order.
#pragma once

#include <vector>

#include "core/chessboard.h"

namespace moremate {

// Every legal first move of `position` (White to move), in the solver's order.
std::vector<TMove> FirstMoveOrder(const TChessboard& position, const std::vector<TMove>& preferred);

}  // namespace moremate
