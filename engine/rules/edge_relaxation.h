// Dynamic relaxation of the king zone rules: the zone stops binding once White has reached a
// relaxing event (a pawn near promotion, enough Black material captured), and with "defer check"
// a king outside the zone is tolerated for a few moves to see whether the event comes in time.
#pragma once

#include "rule_context.h"

namespace moremate {

// Whether a relaxing event has happened anywhere in the line (`extEdgeRule` says which rule asks:
// the relaxation may be restricted to the ext.edge rule).
bool ZoneRelaxed(const TRuleContext& c, bool extEdgeRule);
// Whether a king outside its zone for `halfMovesOutside` half-moves is still given time.
bool ZoneVerdictDeferred(const TRuleContext& c, bool extEdgeRule, int halfMovesOutside);

}  // namespace moremate
