// The problem a command works on: a collection file and a problem number.
#pragma once

#include <string>
#include <vector>

#include "problems/format/problem_entry.h"
#include "program_context.h"

namespace moremate::cli {

// Reads the collection (problems with faults reported through the context's reporter).
std::vector<ProblemEntry> ReadProblems(const std::string& file, TProgramContext& context);

// The record of problem `number`; throws ChessException "Problem N not found".
ProblemEntry& FindProblem(std::vector<ProblemEntry>& entries, unsigned number);

}  // namespace moremate::cli
