// Moves taken back: for each piece of one side, the empty squares it may have come from by a
// move that neither captured nor promoted. Checks are not looked at; the caller tests the
// position before the move.
#pragma once

#include <cstdint>

#include "core/types.h"

namespace moremate {

struct TRetroMove {
    Square from;  // where the piece stands now
    Square to;    // where it stood before
};

struct TRetroMoveList {
    TRetroMove moves[160];
    int count = 0;
};

// `colour`'s moves into `squares`. With `skipOpenEnPassant`, a pawn's double step is not taken
// back when an enemy pawn stands beside it: after such a step the position is not the stored one.
void GenerateRetroMoves(const uint8_t* squares, uint8_t colour, bool skipOpenEnPassant, TRetroMoveList& list);

}  // namespace moremate
