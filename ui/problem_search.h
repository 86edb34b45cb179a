// What the window's search commands look for in a collection: a problem matched by a query, and
// problems whose positions resemble another's. Pure functions of the records; no widgets.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "problems/format/problem_entry.h"

namespace moremate::ui {

// A query matches a problem when it is the problem's number, when it is the placement field of
// a FEN of the problem's position, or when the description or a tag contains it (case ignored).
// A blank query matches nothing.
bool ProblemMatches(const ProblemEntry& entry, const std::string& query);

// The squares on which two positions differ.
int SquaresDiffering(const TChessboard& a, const TChessboard& b);

// Positions that differ from each other on at most this many squares count as similar: one
// piece moved, plus one piece added or taken away.
inline constexpr int kSimilarSquares = 3;

// The indexes of the problems similar to `entries[index]` (not itself), the closest first.
std::vector<size_t> SimilarProblems(const std::vector<ProblemEntry>& entries, size_t index);

// The same problem as another file holds it: the same stipulation and the same position.
bool SameProblem(const ProblemEntry& a, const ProblemEntry& b);

}  // namespace moremate::ui
