#include "gives_check.h"

#include <cstdlib>

#include "movegen.h"
#include "occupancy.h"

namespace moremate {
namespace {

// Castling and en passant move two pieces, a promotion may leave the line from its new square to
// the king through the square it left: those are played (they are rare).
bool PlayedToSee(const TChessboard& board, const TMove& move) {
    const Piece piece = board.squares[move.from];
    return move.PromotedType() || (TypeOf(piece) == kKing && std::abs(move.to - move.from) == 2) ||
           (TypeOf(piece) == kPawn && move.to == board.epSquare);
}

}  // namespace

CCheckSquares::CCheckSquares(const TChessboard& board) {
    const uint8_t us = board.ToMove();
    m_nKing = board.KingSquare(Opponent(us));
    const CJumps& jumps = g_geometry.knight[m_nKing];
    for (int i = 0; i < jumps.count; ++i) m_nKnight |= Bit(jumps.squares[i]);
    const int pawnRank = RankOf(m_nKing) + (us == kWhite ? -1 : 1);
    if (pawnRank >= 0 && pawnRank < 8) {
        const int file = FileOf(m_nKing);
        if (file > 0) m_nPawn |= Bit(MakeSquare(file - 1, pawnRank));
        if (file < 7) m_nPawn |= Bit(MakeSquare(file + 1, pawnRank));
    }
    const uint64_t occupied = Occupied(board.squares);
    for (int d = 0; d < kDirections; ++d) {
        const int first = FirstOnRay(occupied, m_nKing, d);
        const uint64_t open =
            g_geometry.rayMask[m_nKing][d] ^ (first >= 0 ? g_geometry.rayMask[first][d] : 0);
        (IsDiagonal(d) ? m_nDiagonal : m_nLine) |= open;
        if (first < 0 || ColourOf(board.squares[first]) != us) continue;
        const int behind = FirstOnRay(occupied, first, d);
        if (behind >= 0 && SlidesAlong(board.squares[behind], us, d)) m_nUncovers |= Bit(first);
    }
}

bool CCheckSquares::Gives(const TChessboard& board, const TMove& move) const {
    if (PlayedToSee(board, move)) {
        TChessboard after;
        PlayMove(board, move, after);
        return after.InCheck();
    }
    if ((m_nUncovers >> move.from) & 1) {
        const int d = g_geometry.direction[m_nKing][move.from];
        if (!((g_geometry.rayMask[m_nKing][d] >> move.to) & 1)) return true;
    }
    switch (TypeOf(board.squares[move.from])) {
        case kKnight:
            return (m_nKnight >> move.to) & 1;
        case kPawn:
            return (m_nPawn >> move.to) & 1;
        case kBishop:
            return (m_nDiagonal >> move.to) & 1;
        case kRook:
            return (m_nLine >> move.to) & 1;
        case kQueen:
            return ((m_nDiagonal | m_nLine) >> move.to) & 1;
        default:
            return false;
    }
}

bool GivesCheck(const TChessboard& board, const TMove& move) {
    return CCheckSquares(board).Gives(board, move);
}

}  // namespace moremate
