// The rules of the special heuristics, one function per rule: each answers for the position
// after a move whether the line has left the pattern that the heuristic keeps. The search
// itself lets through every move that mates at once, so the rules need not ask.
#pragma once

#include "rule_context.h"

namespace moremate {

// King zone rules (king_zone_rules.cpp).
bool KingLeftEdge(const TRuleContext& c);
bool KingLeftExtendedEdge(const TRuleContext& c);
bool KingFarFromCorner(const TRuleContext& c);

// The black king's freedom and the white king's approach (king_rules.cpp).
bool KingsTooFarApart(const TRuleContext& c);
bool WhiteKingRecedes(const TRuleContext& c);
bool BlackKingNotSurrounded(const TRuleContext& c);
bool NoMateInThreeInSight(const TRuleContext& c);

// White's material (material_rules.cpp).
bool WhiteLostFigure(const TRuleContext& c);
bool LastMajorPieceLost(const TRuleContext& c);
bool KnightNotCapturedInTime(const TRuleContext& c);

// Black figures that are to stay put (black_figure_rules.cpp).
bool BlockedFigureUnblocked(const TRuleContext& c);
bool BlackQueenCheckedTwice(const TRuleContext& c);
bool PromotedQueenFree(const TRuleContext& c);
bool PromotedFigureFree(const TRuleContext& c);
bool MainDiagonalLeft(const TRuleContext& c);

// Lines and squares that White is to hold (line_rules.cpp).
bool KeyLineAbandoned(const TRuleContext& c);
bool KeyDiagonalAbandoned(const TRuleContext& c);
bool RookLeftSweepLine(const TRuleContext& c);
bool TiedPieceMoved(const TRuleContext& c);

// Tempo patterns (tempo_rules.cpp).
bool ZugzwangPositionMissed(const TRuleContext& c);
bool WhiteKingOffTriangle(const TRuleContext& c);
bool ReducedPositionHasNoMate(const TRuleContext& c);

// Rules of the engine's own detections (engine_set_rules.cpp).
bool BlackPawnFreed(const TRuleContext& c);
bool KeySquareAbandoned(const TRuleContext& c);
bool WhiteKingLeavesTempoFight(const TRuleContext& c);

}  // namespace moremate
