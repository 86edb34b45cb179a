// A problem's own heuristic options (a special-heuristic name followed by its parameters in
// brackets, or by OFF) applied to the heuristic set the problem is solved with.
#pragma once

#include "engine/heuristics/heuristic_set.h"
#include "problems/format/problem_entry.h"

namespace moremate {

// Each heuristic given with parameters is put into the set with those parameters, then each
// heuristic switched OFF is taken out. Throws ChessException for a parameter text that cannot be
// read: "Problem <n>: invalid parameters of <name>(<text>): " followed by the reason.
THeuristicSet ApplyProblemHeuristics(const ProblemEntry& entry, THeuristicSet set);

// The set pass 1 starts with when the user chooses none: the engine's choice for the problem's
// position, then the record's own switches and parameters. Throws ChessException as
// MakeSolvingTask and ApplyProblemHeuristics do.
THeuristicSet EngineHeuristics(const ProblemEntry& entry);

}  // namespace moremate
