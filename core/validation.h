// The rules a position must satisfy before it is solved; validation also fills the derived fields.
#pragma once

#include "chessboard.h"

namespace moremate {

// The rules alone, without throwing: the text of the first rule the position breaks, or null.
// Fills the derived fields as Validate does.
const char* BrokenRule(TChessboard& board);
// The verdict of BrokenRule (the same rule, the same text) from the piece bytes alone, filling no
// board: for checking many positions, such as the records of a register file.
const char* BrokenRuleOf(const uint8_t* squares);
// Full flavour, used when a position is newly read or transformed. Throws ChessException.
// With `resetAuxWords` the heuristics' auxiliary state words are zeroed as well.
void Validate(TChessboard& board, bool resetAuxWords);
// Second flavour: the same rules, but auxiliary bits are cleared only at the start of a line.
void ValidateOnLine(TChessboard& board);

// Sets the half-move count of a problem's position, validates it and checks that the side not
// to move is not in check. En passant is never possible on the first move.
void PrepareForSolving(TChessboard& board, int halfMoves, bool resetAuxWords);

}  // namespace moremate
