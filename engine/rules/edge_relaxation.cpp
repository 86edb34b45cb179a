#include "edge_relaxation.h"

#include "engine/heuristics/line_facts.h"

namespace moremate {
namespace {

constexpr int kAdvancedRankFirst = 5;  // a White pawn on the sixth or seventh rank is near promotion

bool HasAdvancedPawn(const TChessboard& board) {
    if (board.whitePawns == 0) return false;
    for (int sq = MakeSquare(0, kAdvancedRankFirst); sq < MakeSquare(0, 7); ++sq)
        if (board.squares[sq] == (kWhite | kPawn)) return true;
    return false;
}

bool Counts(const TEdgeRelaxation& r, Piece captured) {
    return ColourOf(captured) == kBlack && (IsFigure(captured) || (r.alsoPawns && TypeOf(captured) == kPawn));
}

int BlackCapturesInLine(const TChessboard& after, const TEdgeRelaxation& r) {
    int captures = 0;
    for (const TChessboard* p = &after; p->previous; p = p->previous)
        if (!p->lastMove.IsNull() && Counts(r, CapturedPiece(*p))) ++captures;
    return captures;
}

bool AdvancedPawnInLine(const TChessboard& after) {
    for (const TChessboard* p = &after; p; p = p->previous)
        if (HasAdvancedPawn(*p)) return true;
    return false;
}

bool Applies(const TEdgeRelaxation& r, bool extEdgeRule) {
    return extEdgeRule || !r.extEdgeOnly;
}

// No relaxing event can come any more: no White pawns left to advance, or too little Black
// material left to capture.
bool EventImpossible(const TRuleContext& c) {
    const TEdgeRelaxation& r = c.set.params.edgeRelaxation;
    const TChessboard& b = c.after;
    const bool pawnPossible = r.onAdvancedPawn && b.whitePawns > 0;
    const int capturable =
        b.blackQueens + b.blackRooks + b.blackBishops + b.blackKnights + (r.alsoPawns ? b.blackPawns : 0);
    const bool capturePossible =
        r.figuresToCapture > 0 && capturable >= r.figuresToCapture - BlackCapturesInLine(b, r);
    return !pawnPossible && !capturePossible;
}

}  // namespace

bool ZoneRelaxed(const TRuleContext& c, bool extEdgeRule) {
    const TEdgeRelaxation& r = c.set.params.edgeRelaxation;
    if (!Applies(r, extEdgeRule)) return false;
    if (r.onAdvancedPawn && AdvancedPawnInLine(c.after)) return true;
    return r.figuresToCapture > 0 && BlackCapturesInLine(c.after, r) >= r.figuresToCapture;
}

bool ZoneVerdictDeferred(const TRuleContext& c, bool extEdgeRule, int halfMovesOutside) {
    const TEdgeRelaxation& r = c.set.params.edgeRelaxation;
    if (!r.deferCheck || !Applies(r, extEdgeRule) || halfMovesOutside >= 2 * r.deferMoves) return false;
    return !(r.skipDeferIfNoBalanceChange && EventImpossible(c));
}

}  // namespace moremate
