// Moves in records: the answer's list of first moves ("a7-f2, h7:g8Q") and the MOVES sequence of a
// record without stipulation ("1. e2-e4 e7-e5 2. Ng1-f3").
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/chessboard.h"
#include "problem_lexer.h"

namespace moremate {

// Reads the answer's moves, separated by ",", up to the record's closing "}" (left unread).
// Throws ChessException with the message of the first fault.
std::vector<TMove> ReadAnswerMoves(CProblemLexer& lexer);
// One move as the answer line writes it: "%c%d%c%c%d" with ":" for a capture in `board`, then
// the promotion letter.
std::string AnswerMoveText(const TChessboard& board, const TMove& move);
// The moves as the answer line writes them: "%c%d%c%c%d" with ":" for a capture in `board`,
// then the promotion letter; joined by ", ".
std::string AnswerText(const TChessboard& board, const std::vector<TMove>& moves);

// Plays a sequence in long notation from `start`; move numbers and check marks are skipped.
// Throws ChessException `invalidPrefix`, the move that fails and `invalidSuffix`.
std::vector<TMove> ReadMoveSequence(const std::string& text, const TChessboard& start,
                                    std::string_view invalidPrefix = "Invalid move in MakeMove() : ",
                                    std::string_view invalidSuffix = "");
// The sequence as a numbered line of play from `start`.
std::string MoveSequenceText(const TChessboard& start, const std::vector<TMove>& moves);

}  // namespace moremate
