// The text of one stored tablebase answer: a header line, the position's FEN, the position's
// values and the move count, then one line per move ("e7e8q 255 -16 2": the move, its wdl, dtm and
// dtz), and a closing line.
#pragma once

#include <optional>
#include <string>

#include "tablebase_answer.h"

namespace moremate {

std::string WriteAnswerText(const std::string& fen, const TTablebaseAnswer& answer);

// The answer of a text written by WriteAnswerText for `fen`; none for any other text.
std::optional<TTablebaseAnswer> ReadAnswerText(const std::string& text, const std::string& fen);

}  // namespace moremate
