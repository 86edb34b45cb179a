// Main lines without detours: a line that comes back to a position it passed (the same side to
// move) loses the moves in between. From the first visit White can go on as it does from the
// second, with moves to spare, so the shorter line is a forced mate as well.
#pragma once

#include <vector>

#include "core/chessboard.h"

namespace moremate {

// `moves` played from `root` (the first, the key, is always kept) without the detours.
std::vector<TMove> WithoutDetours(const TChessboard& root, const std::vector<TMove>& moves);

}  // namespace moremate
