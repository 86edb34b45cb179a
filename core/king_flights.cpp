#include "king_flights.h"

#include <cstdlib>

#include "king_escape.h"
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
}

// A square next to the king that nobody attacked before the move stays free after it unless the
// moved piece can reach it from where it lands, or a slider attacks it through the square the
// piece left (the piece landing somewhere only blocks lines, and a capture takes no attacker
// away). The reach on an empty board is enough here: it needs no look at the pieces between.
bool CKingFlights::CanStepAfter(const TChessboard& board, const TMove& move) const {
    const uint64_t free = m_nUnattacked & ~(m_nKingsSide & ~Bit(move.to));
    const uint8_t type = TypeOf(board.squares[move.from]);
    const bool special =
        (type == kKing && std::abs(move.to - move.from) == 2) || (type == kPawn && move.to == board.epSquare);
    if (free && !special) {
        uint64_t covered = ReachFrom(move.PromotedType() ? move.PromotedType() : type, m_byMover, move.to);
        const uint64_t others = ~Bit(move.from);
        if (m_nLineSliders & others & g_geometry.lines[move.from]) covered |= g_geometry.lines[move.from];
        if (m_nDiagonalSliders & others & g_geometry.diagonals[move.from])
            covered |= g_geometry.diagonals[move.from];
        if (free & ~covered) return true;
    }
    return KingCanStepAfter(board, move);
}

}  // namespace moremate
