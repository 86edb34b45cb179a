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

  private:
    uint8_t m_byMover;            // the side to move
    uint64_t m_nKingsSide;        // the pieces of the side not to move
    uint64_t m_nUnattacked;       // squares next to it that no enemy piece attacks
    uint64_t m_nLineSliders;      // the enemy's rooks and queens
    uint64_t m_nDiagonalSliders;  // and its bishops and queens
};

}  // namespace moremate
