// A quick answer for the mate test of a checking move: whether the checked king can still step
// somewhere, worked out from the bit boards before the move is played. Most checks leave the king
// a square, and the move then needs neither playing nor a full look at the replies.
#pragma once

#include "chessboard.h"

namespace moremate {

// True when, after `move` (legal in `board`), the king of the side not to move has a step to a
// square no enemy piece attacks: the move does not mate. False when it has none, and for castling
// and en passant (two pieces move), which are left to the full test.
bool KingCanStepAfter(const TChessboard& board, const TMove& move);

// The same answer for many moves of one position. The squares next to the king that no enemy
// piece attacks before the move are worked out once; a move leaves the king one of them unless
// the moved piece, or a line its leaving opens, can cover it, and only then is KingCanStepAfter
// asked.
class CKingFlights {
  public:
    explicit CKingFlights(const TChessboard& board);
    bool CanStepAfter(const TChessboard& board, const TMove& move) const;

  private:
    int m_nKing;                  // the king of the side not to move
    uint64_t m_nUnattacked;       // squares next to it that no enemy piece attacks
    uint64_t m_nLineSliders;      // the enemy's rooks and queens
    uint64_t m_nDiagonalSliders;  // and its bishops and queens
};

}  // namespace moremate
