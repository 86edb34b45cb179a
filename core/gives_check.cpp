#include "gives_check.h"

#include "movegen.h"
#include "occupancy.h"

namespace moremate {
namespace {

// Castling and en passant move two pieces, a promotion may leave the line from its new square to
// the king through the square it left: those are played (they are rare).
bool PlayedToSee(const TChessboard& board, const TMove& move) {
    return move.PromotedType() || MovesTwoPieces(board, move);
}

}  // namespace

CCheckSquares::CCheckSquares(const TChessboard& board) {
    const uint8_t us = board.ToMove();
    m_nKing = board.KingSquare(Opponent(us));
    m_nKnight = g_geometry.knightMask[m_nKing];
    m_nPawn = g_geometry.pawnCaptures[SideIndex(Opponent(us))][m_nKing];
    const uint64_t occupied = board.Occupied();
    m_nDiagonal = DiagonalAttacks(occupied, m_nKing);
    m_nLine = LineAttacks(occupied, m_nKing);
    m_nUncovers = LoneBlockers(board, m_nKing, us, board.With(us));
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

uint64_t CCheckSquares::Candidates(const TChessboard& board, int from, uint64_t targets) const {
    if ((m_nUncovers >> from) & 1) return targets;
    const Piece piece = board.squares[from];
    switch (TypeOf(piece)) {
        case kKnight:
            return targets & m_nKnight;
        case kPawn:  // a promotion checks as the piece it becomes
            return RankOf(from) == (ColourOf(piece) == kWhite ? 6 : 1) ? targets : targets & m_nPawn;
        case kBishop:
            return targets & m_nDiagonal;
        case kRook:
            return targets & m_nLine;
        default:
            return targets & (m_nDiagonal | m_nLine);
    }
}

bool GivesCheck(const TChessboard& board, const TMove& move) {
    return CCheckSquares(board).Gives(board, move);
}

}  // namespace moremate
