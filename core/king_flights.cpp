#include "king_flights.h"

#include <bit>

#include "king_escape.h"
#include "movegen.h"
#include "occupancy.h"

namespace moremate {

CKingFlights::CKingFlights(const TChessboard& board) {
    const uint8_t us = board.ToMove();
    m_byMover = us;
    m_nKingsSide = board.With(Opponent(us));
    const int king = board.KingSquare(Opponent(us));
    const uint64_t around = g_geometry.kingMask[king];
    const uint64_t occupied = board.Occupied() & ~Bit(king);
    m_nUnattacked = around & ~AttacksOnRegion(board, us, board.With(us), occupied, around);
    m_nLineSliders = board.With(us) & board.With(kRook);
    m_nDiagonalSliders = board.With(us) & board.With(kBishop);
    m_nCoverPawn = m_nCoverPromoting = m_nCoverKnight = m_nCoverBishop = m_nCoverRook = m_nCoverQueen =
        ~uint64_t{0};
    for (uint64_t free = m_nUnattacked & ~m_nKingsSide; free; free &= free - 1) {
        const int sq = std::countr_zero(free);
        const uint64_t diagonal = g_geometry.diagonals[sq], line = g_geometry.lines[sq];
        m_nCoverPawn &= g_geometry.pawnCaptures[SideIndex(Opponent(us))][sq];
        m_nCoverKnight &= g_geometry.knightMask[sq];
        m_nCoverBishop &= diagonal;
        m_nCoverRook &= line;
        m_nCoverQueen &= diagonal | line;
        m_nCoverPromoting &= diagonal | line | g_geometry.knightMask[sq];
    }
}

uint64_t CKingFlights::OpenedThrough(int from) const {
    const uint64_t others = ~Bit(from);
    return (m_nLineSliders & others & g_geometry.lines[from] ? g_geometry.lines[from] : 0) |
           (m_nDiagonalSliders & others & g_geometry.diagonals[from] ? g_geometry.diagonals[from] : 0);
}

// A move leaves a free square free unless the moved piece attacks it from where it lands or a
// line through the square it left opens onto it (see CanStepAfter).
uint64_t CKingFlights::Covering(const TChessboard& board, int from) const {
    if (OpenedThrough(from)) return ~uint64_t{0};
    switch (TypeOf(board.squares[from])) {
        case kPawn:
            return RankOf(from) == (m_byMover == kWhite ? 6 : 1) ? m_nCoverPromoting : m_nCoverPawn;
        case kKnight:
            return m_nCoverKnight;
        case kBishop:
            return m_nCoverBishop;
        case kRook:
            return m_nCoverRook;
        case kQueen:
            return m_nCoverQueen;
        default:
            return ~uint64_t{0};
    }
}

// A square next to the king that nobody attacked before the move stays free after it unless the
// moved piece can reach it from where it lands, or a slider attacks it through the square the
// piece left (the piece landing somewhere only blocks lines, and a capture takes no attacker
// away). The reach on an empty board is enough here: it needs no look at the pieces between.
bool CKingFlights::CanStepAfter(const TChessboard& board, const TMove& move) const {
    const uint64_t free = m_nUnattacked & ~(m_nKingsSide & ~Bit(move.to));
    if (free && !MovesTwoPieces(board, move)) {
        const uint8_t type = move.PromotedType() ? move.PromotedType() : TypeOf(board.squares[move.from]);
        if (free & ~(ReachFrom(type, m_byMover, move.to) | OpenedThrough(move.from))) return true;
    }
    return KingCanStepAfter(board, move);
}

}  // namespace moremate
