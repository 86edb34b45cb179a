#include "special_heuristics.h"

#include "move_filters.h"
#include "rules.h"

namespace moremate {
namespace {

// Cheap rules first: a king square or the move alone settle them. Rules that walk the line or
// generate moves come last, so a line that some cheap rule stops never pays for them.
constexpr TRuleEntry kRules[] = {
    {SH_KEEPKINGONTHEEDGE, KingLeftEdge},
    {SH_KEEPKINGWITHINEXTEDGE, KingLeftExtendedEdge},
    {SH_KEEPKINGNEARCORNER, KingFarFromCorner},
    {SH_AREKINGSNEAR, KingsTooFarApart},
    {SH_DONTRECEDEBLACKKING, WhiteKingRecedes},
    {SH_SINGLEQUEENMATE, TiedPieceMoved},
    {SH_SWEEPINGWHITEROOK, RookLeftSweepLine},
    {SH_DONTLOSEANYFIGURES, WhiteLostFigure},
    {SH_SAVEQUEENROOK, LastMajorPieceLost},
    {SH_DONTLEAVEMAINDIAGONAL, MainDiagonalLeft},
    {SH_KEYLINE, KeyLineAbandoned},
    {SH_KEYDIAGONAL, KeyDiagonalAbandoned},
    {SH_SEASNAKE, WhiteKingOffTriangle},
    {SH_ZUGZWANGTRIANGLES, WhiteKingLeavesTempoFight},
    {SH_KEYSQUARE, KeySquareAbandoned},
    {SH_USEBLOCKBLACKPAWNSLEVEL, BlackPawnFreed},
    {SH_CAPTUREKNIGHT, KnightNotCapturedInTime},
    {SH_3MOVESTOMATE, NoMateInThreeInSight},
    {SH_ASSERTBLACKKINGSURROUNDED, BlackKingNotSurrounded},
    {SH_DONTLETFIGUREUNBLOCK, BlockedFigureUnblocked},
    {SH_DONTLETBLACKQUEENCHECKTWICE, BlackQueenCheckedTwice},
    {SH_ZUGZWANG, ZugzwangPositionMissed},
    {SH_DONTLETPROMOTEDQUEENMOVE, PromotedQueenFree},
    {SH_DONTLETPROMOTEDFIGUREMOVE, PromotedFigureFree},
    {SH_REDUCTIONTOGLOBREGPOS, ReducedPositionHasNoMate},
};

// The threat search of FindForcedMate is by far the dearest, so it sees the fewest moves.
constexpr TFilterEntry kFilters[] = {
    {SH_KEYWHITEFIGURE, KeepKeyFigurePinning},
    {SH_ONECOLORPLAYPOSSIBLE, KeepToOneColour},
    {SH_SKIPWORSTWHITEMOVES, SkipWorstWhiteMoves},
    {SH_FINDFORCEDMATE, KeepChecksAndThreats},
};

// With FindForcedMate "partially" with the other heuristics, those apply from this half-move on.
constexpr int kPartialFromHalfMove = 2;

}  // namespace

CSpecialHeuristics::CSpecialHeuristics(const THeuristicSet& set, const TChessboard& root)
    : m_set(set), m_root(root), m_bForcedMate(set.Has(SH_FINDFORCEDMATE)) {
    m_root.previous = nullptr;
    for (const TRuleEntry& e : kRules)
        if (m_set.Has(e.bit)) m_rules.push_back(e);
    for (const TFilterEntry& e : kFilters)
        if (m_set.Has(e.bit)) m_filters.push_back(e);
}

// "-WithOtherHeuristics": off leaves FindForcedMate alone, "partially" spares the first moves.
bool CSpecialHeuristics::OthersApply(const TChessboard& board) const {
    if (!m_bForcedMate) return true;
    switch (m_set.params.ffm.withOtherHeuristics) {
        case 0:
            return false;
        case 1:
            return board.movesAtStart - board.movesLeft >= kPartialFromHalfMove;
        default:
            return true;
    }
}

uint32_t CSpecialHeuristics::Check(const TChessboard& after) {
    if (m_rules.empty() || !after.previous || after.lastMove.IsNull() || !OthersApply(after)) return 0;
    const TRuleContext context{m_set, m_root, after};
    for (const TRuleEntry& r : m_rules)
        if (r.rule(context)) return r.bit;
    return 0;
}

uint32_t CSpecialHeuristics::FilterMoves(const TChessboard& node, TMoveList& moves) {
    const TFilterContext context{m_set, m_root, node};
    const bool others = OthersApply(node);
    uint32_t reason = 0;
    for (const TFilterEntry& f : m_filters) {
        if (f.bit != SH_FINDFORCEDMATE && !others) continue;
        if (f.filter(context, moves) && reason == 0) reason = f.bit;
    }
    return reason;
}

}  // namespace moremate
