// The checks of a record made after its run: the data its requirement clauses name, Black's best
// defence after the main variant's key (GUICHECKBESTDEFENCE), White's continuation after it
// (the auxiliary mate of GUICHECKBESTDEFENCEANDAUX) and the defences expected after the line of
// LOOKFORBESTDEFENCESAFTER. Each failed check gives one text.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "core/chessboard.h"
#include "engine/search/position_store.h"
#include "problems/format/problem_entry.h"

namespace moremate {

// The data a run can draw on besides its own search. Requirements name precalculated data sets
// (REQUIRES, ONLYIFAVAIL, ALLSOLUTIONSREQUIRES) or the online tablebase (REQUIRESSYZYGY...); one
// that is not available is not satisfied, whatever the run found.
struct TAvailableData {
    std::set<std::string> precalculated;  // the names of the precalculated data sets present
    bool bSyzygy = false;                 // the online tablebase can be asked
};

struct TRunFacts {
    bool bAllSolutions = false;
    bool bCompleted = false;          // the run ended by itself: the defence checks only follow such runs
    CPositionStore* store = nullptr;  // the run's register, for the searches of the defence checks
    TAvailableData available;
};

// "Requires clause not satisfied", "RequiresSyzygy not satisfied", "AllSolutionsRequires clause
// not satisfied", "AllSolutionsRequiresSyzygy not satisfied", "Error in best defence:...",
// "Error in auxMate:...", "Error in count of bestDefences (LookForBestDefencesAfter):...",
// "Error in bestDefences (LookForBestDefencesAfter):...", or a stored line's reading error.
// `root` is the solved position (White to move, its half-moves the stipulation's).
std::vector<std::string> FailedChecks(const ProblemEntry& entry, const TChessboard& root,
                                      const TRunFacts& run);

}  // namespace moremate
