#include "king_escape.h"

#include <bit>

#include "movegen.h"
#include "occupancy.h"

namespace moremate {
namespace {

// The squares a piece of `type` and `colour` on `sq` attacks when `occupied` stands on the board.
uint64_t AttacksFrom(uint8_t type, uint8_t colour, int sq, uint64_t occupied) {
    switch (type) {
        case kBishop:
            return DiagonalAttacks(occupied, sq);
        case kRook:
            return LineAttacks(occupied, sq);
        case kQueen:
            return DiagonalAttacks(occupied, sq) | LineAttacks(occupied, sq);
        default:
            return ReachFrom(type, colour, sq);
    }
}

}  // namespace

// Sliders are asked only when their lines can reach the region.
uint64_t AttacksOnRegion(const TChessboard& board, uint8_t colour, uint64_t pieces, uint64_t occupied,
                         uint64_t region) {
    const uint64_t pawns = pieces & board.With(kPawn);
    uint64_t attacked = PawnCapturesTowardsA(pawns, colour) | PawnCapturesTowardsH(pawns, colour);
    for (uint64_t knights = pieces & board.With(kKnight); knights; knights &= knights - 1)
        attacked |= g_geometry.knightMask[std::countr_zero(knights)];
    if (const uint64_t king = pieces & board.With(kKing))
        attacked |= g_geometry.kingMask[std::countr_zero(king)];
    for (uint64_t sliders = pieces & board.With(kBishop); sliders; sliders &= sliders - 1) {
        const int sq = std::countr_zero(sliders);
        if (g_geometry.diagonals[sq] & region) attacked |= DiagonalAttacks(occupied, sq);
    }
    for (uint64_t sliders = pieces & board.With(kRook); sliders; sliders &= sliders - 1) {
        const int sq = std::countr_zero(sliders);
        if (g_geometry.lines[sq] & region) attacked |= LineAttacks(occupied, sq);
    }
    return attacked & region;
}

bool KingCanStepAfter(const TChessboard& board, const TMove& move) {
    if (MovesTwoPieces(board, move)) return false;
    const uint8_t type = TypeOf(board.squares[move.from]);
    const uint8_t us = board.ToMove(), them = Opponent(us);
    const int king = board.KingSquare(them);
    const uint64_t to = Bit(move.to);
    const uint64_t steps = g_geometry.kingMask[king] & ~(board.With(them) & ~to);
    if (!steps) return false;
    // The pieces after the move, the checked king lifted off its square: it does not shield the
    // squares behind it from a line it steps along. The moved piece attacks from `to`, the others
    // from where they stand (a piece taken on `to` is Black's); it never attacks `to` itself,
    // where the king may take it.
    const uint64_t occupied = ((board.Occupied() & ~Bit(move.from)) | to) & ~Bit(king);
    const uint8_t movedType = move.PromotedType() ? move.PromotedType() : type;
    const uint64_t others = board.With(us) & ~Bit(move.from);
    const uint64_t attacked =
        AttacksOnRegion(board, us, others, occupied, steps) | AttacksFrom(movedType, us, move.to, occupied);
    return (steps & ~attacked) != 0;
}

}  // namespace moremate
