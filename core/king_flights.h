// The mate test's quick answer for the checking moves of one position.
#pragma once

#include "chessboard.h"

namespace moremate {

// KingCanStepAfter's answer for many moves of one position. The squares next to the king that no
// enemy piece attacks before the move are worked out once; a move leaves the king one of them
// unless the moved piece, or a line its leaving opens, can cover it, and only then is
// KingCanStepAfter asked.
class CKingFlights {
  public:
    explicit CKingFlights(const TChessboard& board);
    bool CanStepAfter(const TChessboard& board, const TMove& move) const;
    // The squares the piece on `from` may move to and still mate: those from which it attacks
    // every square next to the king that is free now. All squares when its leaving may open a
    // slider's line, for the king, and when no square is free.
    uint64_t Covering(const TChessboard& board, int from) const;

  private:
    // The line and the diagonal through `from` where another slider of the side to move stands on
    // them: the squares its leaving may open to a slider.
    uint64_t OpenedThrough(int from) const;

    uint8_t m_byMover;            // the side to move
    uint64_t m_nKingsSide;        // the pieces of the side not to move
    uint64_t m_nUnattacked;       // squares next to it that no enemy piece attacks
    uint64_t m_nLineSliders;      // the enemy's rooks and queens
    uint64_t m_nDiagonalSliders;  // and its bishops and queens
    // Squares from which a piece of the side to move attacks every free square next to the king,
    // by kind of piece (a pawn about to promote as a queen or a knight).
    uint64_t m_nCoverPawn, m_nCoverPromoting, m_nCoverKnight, m_nCoverBishop, m_nCoverRook, m_nCoverQueen;
};

}  // namespace moremate
