// Extra heuristics that a problem names for itself, as a list of short tokens ("SafeMode",
// "DLFU(h1,d5,e7)", "FFM(#5)", ...), added to the heuristics that the engine detects.
#pragma once

#include <optional>
#include <string_view>

#include "heuristic_set.h"

namespace moremate {

// The set with the tokens applied, and what the tokens ask of the solving run.
struct TPredefinedHeuristics {
    THeuristicSet m_set;
    bool m_bSafeModeForced = false;      // "SafeMode"
    bool m_bDlfuForbidden = false;       // "!DLFU": the engine may not set DLFU itself
    std::optional<int> m_nSyzygyLevels;  // "SyzygyLevels(n)"
};

// Applies the tokens of `tokens`, separated by blanks or by commas outside brackets, to `set`.
// Throws ChessException "Error occurred in ApplyPredefinedAdditionalHeuristics() : " followed by
// the reason ("Invalid square description at index <i>", "Invalid square", or the token that
// cannot be read).
TPredefinedHeuristics ApplyPredefinedAdditionalHeuristics(const THeuristicSet& set, std::string_view tokens);

}  // namespace moremate
