// The position of a record: "FEN" ":" and a FEN text, or a list of White figures ("W" ":" Ke1,
// Qd1, ...) followed by a list of Black ones ("B" ":" ...).
#pragma once

#include <string>

#include "core/chessboard.h"
#include "problem_lexer.h"

namespace moremate {

// Reads the position that begins with `keyword` (already read) into `board` and validates it.
// Returns the FEN text when the position was given as FEN, else an empty text.
// Throws ChessException with the message of the first fault.
std::string ReadPosition(const std::string& keyword, CProblemLexer& lexer, TChessboard& board);

// Whether one colour has more than nine queens and pawns together (in a validated position).
bool HasTooManyQueensAndPawns(const TChessboard& board);

}  // namespace moremate
