// What a rule of the special heuristics sees: the set in force, the problem's root position and
// the position after the move just played, with the line before it reachable through `previous`.
// Rules keep no state of their own, so one hook can serve any number of lines.
#pragma once

#include <cstdint>

#include "core/chessboard.h"
#include "core/movegen.h"
#include "engine/heuristics/heuristic_set.h"

namespace moremate {

struct TRuleContext {
    const THeuristicSet& set;
    const TChessboard& root;
    const TChessboard& after;

    const TChessboard& Before() const { return *after.previous; }
    const TMove& Move() const { return after.lastMove; }
    // The piece that moved, as it stands now (a promoted pawn is its new piece).
    Piece Moved() const { return after.squares[after.lastMove.to]; }
    bool BlackMoved() const { return after.WhiteToMove(); }
};

// What a move filter sees: the set, the root and the node whose legal moves it may drop.
struct TFilterContext {
    const THeuristicSet& set;
    const TChessboard& root;
    const TChessboard& node;
};

// A rule: true when the line no longer fits the heuristic ("mate doubtful").
using TRule = bool (*)(const TRuleContext&);
// A filter: drops moves from the list and says whether it dropped any.
using TMoveFilter = bool (*)(const TFilterContext&, TMoveList&);

// A rule or filter with the heuristic bit it answers for.
struct TRuleEntry {
    uint32_t bit;
    TRule rule;
};
struct TFilterEntry {
    uint32_t bit;
    TMoveFilter filter;
};

}  // namespace moremate
