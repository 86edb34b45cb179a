// "First run FindForcedMate": at White's nodes only checks and moves that threaten mate are
// searched. A threat is tested by letting Black pass (the position after White's move, with White
// to move again) and asking a plain mate search for a mate within the mode's depth. Checks are
// recognised on the board before the move, so only quiet moves pay for a threat search.
#include <algorithm>

#include "core/gives_check.h"
#include "engine/heuristics/line_facts.h"
#include "engine/search/mate_search.h"
#include "move_filters.h"

namespace moremate {
namespace {

// Threat depth in White moves of a mode, 0 for "CheckOnly" (and for modes out of range).
int ThreatDepth(uint8_t mode) {
    switch (mode) {
        case kFfmThreat1:
        case kFfmThreat1Plus:
            return 1;
        case kFfmThreat2:
        case kFfmThreat2Plus:
            return 2;
        case kFfmThreat3:
            return 3;
        case kFfmThreat4:
            return 4;
        case kFfmThreat5:
            return 5;
        default:
            return 0;
    }
}

bool PlusMode(uint8_t mode) {
    return mode == kFfmThreat1Plus || mode == kFfmThreat2Plus;
}

// The "+" modes also keep every capture and promotion; with the neighbourhood option the modes from
// "#2" on keep captures of black figures next to the black king.
bool BuiltInException(const TFilterContext& c, const TMove& m) {
    const TFindForcedMate& ffm = c.set.params.ffm;
    const Piece target = c.node.squares[m.to];
    if (PlusMode(ffm.mode) && (target != kEmpty || m.PromotedType())) return true;
    return ffm.captureNearBlackKing && ThreatDepth(ffm.mode) >= 2 && IsFigure(target) &&
           KingDistance(m.to, c.node.BlackKingSquare()) <= 1;
}

// Whether White, moving again after `m` as if Black had passed, mates within `depth` moves.
bool ThreatensMate(TMateSearch& search, const TChessboard& node, const TMove& m, int depth) {
    TChessboard child;
    PlayMove(node, m, child);
    TChessboard passed = child;
    passed.previous = &child;
    passed.lastMove = TMove{};
    passed.epSquare = kNoSquare;
    passed.movesLeft = static_cast<int16_t>(2 * depth - 1);
    return search.FindForcedMate(passed) == kMate;
}

}  // namespace

bool KeepChecksAndThreats(const TFilterContext& c, TMoveList& moves) {
    if (!c.node.WhiteToMove()) return false;
    const CCheckSquares checks(c.node);
    const auto forcing = [&](const TMove& m) { return checks.Gives(c.node, m) || BuiltInException(c, m); };
    // After White's move and Black's pass, White has (movesLeft - 1) / 2 moves of the line left.
    const int depth = std::min(ThreatDepth(c.set.params.ffm.mode), (c.node.movesLeft - 1) / 2);
    if (depth < 1) return DropMoves(moves, [&](const TMove& m) { return !forcing(m); });
    // One threat search per thread, made once: the search keeps its killer moves from one threat
    // test to the next, and a node does not pay for setting up a search. The threat search runs
    // without heuristics, so it never comes back into this filter.
    thread_local TMateSearch threats{TSearchEnvironment{}};
    return DropMoves(
        moves, [&](const TMove& m) { return !forcing(m) && !ThreatensMate(threats, c.node, m, depth); });
}

}  // namespace moremate
