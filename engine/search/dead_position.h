// Positions in which White can never mate, whatever the half-moves left: White has the king
// alone; or, with no pawns, a single knight against the bare king; or bishops only, all on
// squares of one colour, against a king with no more than bishops on that same colour. No
// sequence of moves at all leads from them to a mate, so the searches settle such a node at once
// instead of playing it out to the end of the budget.
#pragma once

#include "core/chessboard.h"

namespace moremate {

bool WhiteCannotMate(const TChessboard& node);

}  // namespace moremate
