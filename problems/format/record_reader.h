// The grammar of one problem record: number and stipulation, options, annotation lines, then
// "{", description, position, moves, answer and "}".
#pragma once

#include <optional>
#include <string>

#include "problem_entry.h"
#include "problem_lexer.h"
#include "user_questions.h"

namespace moremate {

// Reads the record whose first lexeme, `numberLexeme`, the caller has already read. Returns
// nothing when the record was read but the user rejected it. Throws ChessException with the
// message of the first syntax fault; the lexer then stands where the fault was found.
std::optional<ProblemEntry> ReadRecord(const std::string& numberLexeme, CProblemLexer& lexer,
                                       const TUserQuestions& questions);

}  // namespace moremate
