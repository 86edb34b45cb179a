// The solution details file written after a run when the user asks for it: the settings of the
// analysis, what was found in which pass, and the notes.
#pragma once

#include "engine/passes/passes.h"
#include "problems/format/problem_entry.h"

namespace moremate {

// Writes "SolutionDetails.log" in the program folder (temporary file, then rename).
void WriteSolutionDetails(const ProblemEntry& entry, const TChessboard& root, const TPassState& firstPass,
                          TSolutionCount solutions, const TRunThreads& threads, const TPassRunResult& result);

// The text of that file.
std::string SolutionDetailsText(const ProblemEntry& entry, const TChessboard& root,
                                const TPassState& firstPass, TSolutionCount solutions,
                                const TRunThreads& threads, const TPassRunResult& result);

}  // namespace moremate
