// The engine's view of a problem's sort indications: the first moves of White to try first.
#pragma once

#include <vector>

#include "problems/format/problem_entry.h"
#include "settings/reporter.h"

namespace moremate {

// The legal first moves that the sort indications name, in the order of their descriptions;
// then, by the problem's sort-indication mode, the first move of the main variant (mode 1) or of
// every variant, the main variant first (mode 2). Moves named by a negated description are left
// out; no move comes twice. Throws ChessException when the sort indications cannot be read.
std::vector<TMove> PreferredFirstMoves(const ProblemEntry& entry, int language = kEnglish);

}  // namespace moremate
