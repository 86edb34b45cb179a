// Whether a move gives check, decided on the board before the move without playing it. The mate
// search asks this for every White move near the end of a line, where only checks can mate, so
// what the answer needs is worked out once per position: the squares from which each kind of
// piece would check the other king, and the pieces whose departure uncovers a line to it.
#pragma once

#include <cstdint>

#include "chessboard.h"

namespace moremate {

class CCheckSquares {
  public:
    // For the moves of the side to move in `board`.
    explicit CCheckSquares(const TChessboard& board);
    // `move` is a legal move of `board`, the position given to the constructor.
    bool Gives(const TChessboard& board, const TMove& move) const;
    // The squares of `targets` (those of the piece on `from`, not the king) on which a move of it
    // may check: all that do and perhaps others, which Gives tells apart.
    uint64_t Candidates(const TChessboard& board, int from, uint64_t targets) const;
    // Whether the piece on `from` stands alone on a line between a slider of the side to move and
    // the king: any move of it off that line checks.
    bool Uncovers(int from) const { return (m_nUncovers >> from) & 1; }

  private:
    int m_nKing;               // the king that would be checked
    uint64_t m_nKnight = 0;    // squares a knight checks from
    uint64_t m_nPawn = 0;      // squares a pawn checks from
    uint64_t m_nDiagonal = 0;  // squares a bishop or queen checks from
    uint64_t m_nLine = 0;      // squares a rook or queen checks from
    uint64_t m_nUncovers = 0;  // pieces whose leaving the king's line uncovers a slider's check
};

// One move alone; a loop over a position's moves keeps one CCheckSquares instead.
bool GivesCheck(const TChessboard& board, const TMove& move);

}  // namespace moremate
