// A quick answer for the mate test of a checking move: whether the checked king can still step
// somewhere, worked out from the bit boards before the move is played. Most checks leave the king
// a square, and the move then needs neither playing nor a full look at the replies.
#pragma once

#include "chessboard.h"
#include "occupancy.h"

namespace moremate {

// True when, after `move` (legal in `board`), the king of the side not to move has a step to a
// square no enemy piece attacks: the move does not mate. False when it has none, and for castling
// and en passant (two pieces move), which are left to the full test.
bool KingCanStepAfter(const TChessboard& board, const TMove& move);

// The squares a piece of `type` and `colour` on `sq` attacks on an empty board.
inline uint64_t ReachFrom(uint8_t type, uint8_t colour, int sq) {
    switch (type) {
        case kPawn:
            return g_geometry.pawnCaptures[SideIndex(colour)][sq];
        case kKnight:
            return g_geometry.knightMask[sq];
        case kBishop:
            return g_geometry.diagonals[sq];
        case kRook:
            return g_geometry.lines[sq];
        case kQueen:
            return g_geometry.diagonals[sq] | g_geometry.lines[sq];
        default:
            return g_geometry.kingMask[sq];
    }
}

// Of the squares of `region`, those that the pieces of `colour` on `pieces` attack when `occupied`
// stands on the board.
uint64_t AttacksOnRegion(const TChessboard& board, uint8_t colour, uint64_t pieces, uint64_t occupied,
                         uint64_t region);

}  // namespace moremate
