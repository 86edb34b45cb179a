#include "king_escape.h"

#include <bit>
#include <cstdlib>

#include "occupancy.h"

namespace moremate {
namespace {

// The squares a piece of `type` and `colour` on `sq` attacks when `occupied` stands on the board.
uint64_t AttacksFrom(uint8_t type, uint8_t colour, int sq, uint64_t occupied) {
    switch (type) {
        case kPawn:
            return g_geometry.pawnCaptures[SideIndex(colour)][sq];
        case kKnight:
            return g_geometry.knightMask[sq];
        case kBishop:
            return DiagonalAttacks(occupied, sq);
        case kRook:
            return LineAttacks(occupied, sq);
        case kQueen:
            return DiagonalAttacks(occupied, sq) | LineAttacks(occupied, sq);
        default:
            return g_geometry.kingMask[sq];
    }
}

}  // namespace

bool KingCanStepAfter(const TChessboard& board, const TMove& move) {
    const Piece piece = board.squares[move.from];
    const uint8_t type = TypeOf(piece);
    if ((type == kKing && std::abs(move.to - move.from) == 2) || (type == kPawn && move.to == board.epSquare))
        return false;
    const uint8_t us = board.ToMove(), them = Opponent(us);
    const int king = board.KingSquare(them);
    const uint64_t to = Bit(move.to);
    // The pieces after the move, the checked king lifted off its square: it does not shield the
    // squares behind it from a line it steps along.
    const uint64_t occupied = ((board.Occupied() & ~Bit(move.from)) | to) & ~Bit(king);
    const uint8_t movedType = move.PromotedType() ? move.PromotedType() : type;
    const uint64_t fromMoved = AttacksFrom(movedType, us, move.to, occupied);
    for (uint64_t steps = g_geometry.kingMask[king] & ~(board.With(them) & ~to); steps; steps &= steps - 1) {
        const int sq = std::countr_zero(steps);
        // The moved piece is off `from` in `occupied`, so AttackersOf leaves it out: it attacks
        // from `to` (never `to` itself, where the king may take it).
        if (!AttackersOf(board, sq, us, occupied) && !((fromMoved >> sq) & 1)) return true;
    }
    return false;
}

}  // namespace moremate
