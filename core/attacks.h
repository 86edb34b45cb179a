// Who attacks a square. The scans start at the square and walk outward (king, pawns, knights,
// then the eight rays), so a test costs a few dozen byte reads and no board-wide loop. The board's
// piece counts let a scan pass over the kinds of attacker the side does not have (no pawns: no pawn
// squares; no queen or bishop: no diagonals; no queen or rook: no lines).
#pragma once

#include <cstdint>

#include "chessboard.h"

namespace moremate {

inline constexpr uint8_t kNoAttacker = 255;
inline constexpr uint8_t kManyAttackers = 64;

// Attackers as (file, rank) pairs, in the order the scan finds them.
struct TAttackerList {
    uint8_t count = 0;
    uint8_t file[16];
    uint8_t rank[16];
};

// kNoAttacker, kManyAttackers, or the square of the single attacker of (file, rank) by `colour`.
uint8_t AttackerOf(const TChessboard& board, uint8_t colour, int file, int rank,
                   TAttackerList* list = nullptr);
bool IsAttackedByWhite(const TChessboard& board, int file, int rank);
bool IsAttackedByBlack(const TChessboard& board, int file, int rank);
// As above on a board whose piece bytes may differ from `board.squares` (a king lifted off).
bool IsAttacked(const TChessboard& board, const uint8_t* squares, int sq, uint8_t byColour);

// For a board whose piece counts are not kept (a placement set up square by square): every kind
// of piece counted present on both sides, so that no scan passes over one.
void CountEveryPieceKind(TChessboard& board);

// Squares next to the Black king it may go to: on the board, not held by a Black piece, and not
// attacked by White with the king lifted off its square.
int BlackKingFlightSquares(const TChessboard& board);

// Attacker answer of the king of `colour`, as stored in the king-attacker fields (-1 for none).
int8_t KingAttackerField(const TChessboard& board, uint8_t colour);

}  // namespace moremate
