// Whether the position a run is to analyse repeats a position of the line played to reach it.
#pragma once

#include "core/chessboard.h"

namespace moremate {

// True when an earlier position of `node`'s line (followed through the `previous` links, with the
// same side to move) is the same position as `node`.
bool RepeatsPositionOfLine(const TChessboard& node);

}  // namespace moremate
