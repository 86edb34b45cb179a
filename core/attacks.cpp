#include "attacks.h"

#include <bit>

#include "occupancy.h"
#include "tables.h"

namespace moremate {
uint8_t AttackerOf(const TChessboard& board, uint8_t colour, int file, int rank, TAttackerList* list) {
    uint64_t attackers = AttackersOf(board, MakeSquare(file, rank), colour, board.Occupied());
    const uint8_t answer = AttackerAnswer(attackers);
    for (; list && attackers && list->count < 16; attackers &= attackers - 1) {
        const int from = std::countr_zero(attackers);
        list->file[list->count] = static_cast<uint8_t>(FileOf(from));
        list->rank[list->count] = static_cast<uint8_t>(RankOf(from));
        ++list->count;
    }
    return answer;
}

bool IsAttacked(const TChessboard& board, int sq, uint8_t byColour) {
    return AttackersOf(board, sq, byColour, board.Occupied()) != 0;
}

void DerivePieceBits(TChessboard& board) {
    PieceBitPlanes(board.squares, board.pieceBits);
    board.squaresHash = SquaresHash(board.squares);
}

int BlackKingFlightSquares(const TChessboard& board) {
    const int king = board.BlackKingSquare();
    const uint64_t lifted = board.Occupied() ^ Bit(king);
    int flights = 0;
    for (uint64_t around = g_geometry.kingMask[king] & ~board.With(kBlack); around; around &= around - 1)
        flights += AttackersOf(board, std::countr_zero(around), kWhite, lifted) == 0;
    return flights;
}

}  // namespace moremate
