// Who attacks a square, from the board's bit boards: the jumps of knights, kings and pawns are
// table masks, and the slider rays are worked out only when a slider of the side stands on a
// line or diagonal of the square (occupancy.h).
#pragma once

#include <bit>
#include <cstdint>

#include "chessboard.h"
#include "occupancy.h"

namespace moremate {

inline constexpr uint8_t kNoAttacker = 255;
inline constexpr uint8_t kManyAttackers = 64;

// Attackers as (file, rank) pairs, in square order.
struct TAttackerList {
    uint8_t count = 0;
    uint8_t file[16];
    uint8_t rank[16];
};

// kNoAttacker, kManyAttackers, or the square of the single attacker of (file, rank) by `colour`.
uint8_t AttackerOf(const TChessboard& board, uint8_t colour, int file, int rank,
                   TAttackerList* list = nullptr);
bool IsAttacked(const TChessboard& board, int sq, uint8_t byColour);

// Fills the bit boards and the hash from the piece bytes, for a board set up square by square (the
// validation does it for the positions it checks).
void DerivePieceBits(TChessboard& board);

// Squares next to the Black king it may go to: on the board, not held by a Black piece, and not
// attacked by White with the king lifted off its square.
int BlackKingFlightSquares(const TChessboard& board);

// kNoAttacker, kManyAttackers or the square of the single attacker in `attackers`.
inline uint8_t AttackerAnswer(uint64_t attackers) {
    if (!attackers) return kNoAttacker;
    return (attackers & (attackers - 1)) ? kManyAttackers : static_cast<uint8_t>(std::countr_zero(attackers));
}

// Attacker answer of the king of `colour`, as stored in the king-attacker fields (-1 for none).
// Inline: every PlayMove asks it.
inline int8_t KingAttackerField(const TChessboard& board, uint8_t colour) {
    const uint8_t answer =
        AttackerAnswer(AttackersOf(board, board.KingSquare(colour), Opponent(colour), board.Occupied()));
    return answer == kNoAttacker ? int8_t{-1} : static_cast<int8_t>(answer);
}

}  // namespace moremate
