// Whether a move gives check, decided on the board before the move without playing it.
// The mate search asks this for every White move near the end of a line, where only checks
// can mate, so it looks along two lines from the enemy king instead of copying the position.
#pragma once

#include "chessboard.h"

namespace moremate {

bool GivesCheck(const TChessboard& board, const TMove& move);

}  // namespace moremate
