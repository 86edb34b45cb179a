// Rules that keep the black king in a zone: on the edge, within the two outer lines, near a
// corner, or on its square. Each costs a look at the king's square; line walks (relaxation,
// deferred verdicts) start only once the king is outside its zone.
#include <algorithm>

#include "edge_relaxation.h"
#include "engine/heuristics/line_facts.h"
#include "rules.h"

namespace moremate {
namespace {

using TZone = bool (*)(const THeuristicParameters&, int square);

int LinesFromEdge(int square) {
    const int f = FileOf(square), r = RankOf(square);
    return std::min(std::min(f, 7 - f), std::min(r, 7 - r));
}

// The edge line; with "incl.corner" also b2, b7, g2 and g7, the king's last squares before a corner.
bool OnEdge(const THeuristicParameters& p, int square) {
    if (LinesFromEdge(square) == 0) return true;
    const int f = FileOf(square), r = RankOf(square);
    return p.inclCorner && (f == 1 || f == 6) && (r == 1 || r == 6);
}

bool WithinExtendedEdge(const THeuristicParameters&, int square) {
    return LinesFromEdge(square) <= 1;
}

int HalfMovesOutside(const TChessboard& after, const THeuristicParameters& p, TZone inZone) {
    int n = 0;
    for (const TChessboard* b = after.previous; b && !inZone(p, b->BlackKingSquare()); b = b->previous) ++n;
    return n;
}

bool OutsideZone(const TRuleContext& c, TZone inZone, bool extEdgeRule) {
    const THeuristicParameters& p = c.set.params;
    if (inZone(p, c.after.BlackKingSquare()) || ZoneRelaxed(c, extEdgeRule)) return false;
    return !ZoneVerdictDeferred(c, extEdgeRule, HalfMovesOutside(c.after, p, inZone));
}

bool BlackKingMoved(const TRuleContext& c) {
    return c.BlackMoved() && c.Moved() == (kBlack | kKing);
}

// A pawn move after which the pawn can go nowhere: its square ahead is taken and it has nothing
// to capture.
bool PawnNowBlocked(const TRuleContext& c) {
    if (c.Moved() != (kBlack | kPawn)) return false;
    const int sq = c.Move().to;
    if (RankOf(sq) == 0 || c.after.squares[sq - 8] == kEmpty) return false;
    const int f = FileOf(sq);
    const bool left = f > 0 && ColourOf(c.after.squares[sq - 9]) == kWhite;
    const bool right = f < 7 && ColourOf(c.after.squares[sq - 7]) == kWhite;
    return !left && !right;
}

// STRICT: the black king stays on its square.
bool KingMovedAtAll(const TRuleContext& c) {
    return BlackKingMoved(c) && !ZoneRelaxed(c, false);
}

// ALMOST_STRICT: the king may step off its root square only to be driven straight back: its next
// move must return it, and while it is away Black may only move pawns that end blocked.
bool KingDidNotReturn(const TRuleContext& c) {
    if (!c.BlackMoved()) return false;
    const int home = c.root.BlackKingSquare();
    const int now = c.after.BlackKingSquare();
    if (now == home) return false;
    if (BlackKingMoved(c) && c.Before().BlackKingSquare() == home) return false;  // first step away
    if (PawnNowBlocked(c)) return false;
    return !ZoneRelaxed(c, false);
}

// "Move unless back to the edge": a king on the second line may stay there, but its moves must
// take it onto the edge line.
bool KingStepsOffEdge(const TRuleContext& c) {
    return BlackKingMoved(c) && !OnEdge(c.set.params, c.after.BlackKingSquare()) && !ZoneRelaxed(c, true);
}

}  // namespace

bool KingLeftEdge(const TRuleContext& c) {
    switch (c.set.params.kingMode) {
        case TKingMode::Strict:
            return KingMovedAtAll(c);
        case TKingMode::AlmostStrict:
            return KingDidNotReturn(c);
        case TKingMode::Off:
            break;
    }
    return OutsideZone(c, OnEdge, false);
}

bool KingLeftExtendedEdge(const TRuleContext& c) {
    return OutsideZone(c, WithinExtendedEdge, true) || (c.set.params.edgeStrict && KingStepsOffEdge(c));
}

// Distance to the nearest corner, in squares along files and ranks (a positive maximum) or in
// king moves (zero or less: its absolute value).
bool KingFarFromCorner(const TRuleContext& c) {
    const int maximum = c.set.params.cornerDistance;
    const bool inSquares = maximum > 0;
    const int king = c.after.BlackKingSquare();
    int nearest = 64;
    for (int corner : {0, 7, 56, 63})
        nearest = std::min(nearest, inSquares ? StepDistance(king, corner) : KingDistance(king, corner));
    return nearest > (inSquares ? maximum : -maximum);
}

}  // namespace moremate
