// The move filters of the special heuristics: they drop moves from a node's legal moves before
// the search tries them, so the moves dropped are never searched at all.
#pragma once

#include "rule_context.h"

namespace moremate {

// Only White's checks and moves that threaten mate within the chosen depth (forced_mate_filter.cpp).
bool KeepChecksAndThreats(const TFilterContext& c, TMoveList& moves);
// White's worst moves (figures put en prise) or, with "SkipPassive", its passive moves.
bool SkipWorstWhiteMoves(const TFilterContext& c, TMoveList& moves);
// Play on one square colour: White's pieces keep off the other colour, the black bishop there passes.
bool KeepToOneColour(const TFilterContext& c, TMoveList& moves);
// The key white figure keeps its pin: its moves and unsafe captures of the pinned figure are skipped.
bool KeepKeyFigurePinning(const TFilterContext& c, TMoveList& moves);

}  // namespace moremate
