// Rules for problems built on tempo play: a zugzwang position the line must come back to, and the
// white king's tempo triangle of the sea snake. Plus the reduction to precalculated positions.
#include <cstring>

#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {
namespace {

bool IsZugzwangPosition(const THeuristicParameters& p, const TChessboard& b) {
    return std::memcmp(p.zugzwangSquares, b.squares, 64) == 0;
}

}  // namespace

// The line is to reach the zugzwang position (Black to move) by White's move number "after move":
// a line whose White move of that number leaves another position, and which did not pass through
// the zugzwang position before, is doubtful.
bool ZugzwangPositionMissed(const TRuleContext& c) {
    const THeuristicParameters& p = c.set.params;
    if (!p.zugzwangSet || c.BlackMoved() || WhiteMovesPlayed(c.after) != p.zugzwangAfterMove) return false;
    for (const TChessboard* b = &c.after; b; b = b->previous)
        if (!b->WhiteToMove() && IsZugzwangPosition(p, *b)) return false;
    return true;
}

// Sea snake: from "only after" on, the white king loses its tempo on the triangle of the approach
// and turn-back squares and a third square next to both; it may not wander off it.
bool WhiteKingOffTriangle(const TRuleContext& c) {
    const TSeaSnake& s = c.set.params.seaSnake;
    if (c.BlackMoved() || c.Moved() != (kWhite | kKing) || s.approach >= 64 || s.turnBack >= 64) return false;
    if (WhiteMovesPlayed(c.after) <= s.onlyAfterMove) return false;
    const int to = c.Move().to;
    return KingDistance(to, s.approach) > 1 || KingDistance(to, s.turnBack) > 1;
}

// Needs the global register's precalculated data, which holds no position type yet: the reduced
// position is never known, and the line always goes on.
bool ReducedPositionHasNoMate(const TRuleContext&) {
    return false;
}

}  // namespace moremate
