// The options of a record's header line: one table of keywords drives both their reading and
// their canonical writing.
#pragma once

#include <string>

#include "problem_entry.h"
#include "problem_lexer.h"

namespace moremate {

// Reads the option `keyword` (as found in the file) and its arguments from `lexer` into `entry`.
// Keywords compare without regard to case; a keyword that is none of the table's is tried as a
// special-heuristic name. Returns false when it is neither. Throws ChessException on a bad argument.
bool ReadOption(const std::string& keyword, CProblemLexer& lexer, ProblemEntry& entry);

// The options as the header line writes them, in the table's order, each with a leading blank.
std::string WriteOptions(const ProblemEntry& entry);

}  // namespace moremate
