// Named variants of a problem: move sequences from its initial position, stored one per line
// between "//!VARIANTS" and "//!ENDVARIANTS" as the name, ": " and the numbered line of play
// ("Main variant: 1. Qa7-a1+ Kc1-d2 2. Qa1-b1#"). Move texts never hold ": ", so the last ": " of
// a line ends the name, whatever the name holds.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "problems/format/problem_entry.h"

namespace moremate {

using TVariants = std::map<std::string, std::vector<TMove>>;

inline constexpr const char* kMainVariantName = "Main variant";  // shown on navigation
inline constexpr size_t kMaxVariantMoves = 512;                  // half-moves of one stored variant

// "{Variant" number "}": the name of a variant made from a predefined solution.
std::string PredefinedVariantName(int number);

// The stored line of a variant; the moves are legal from `start`.
std::string VariantLine(const TChessboard& start, const std::string& name, const std::vector<TMove>& moves);

struct TVariant {
    std::string sName;
    std::vector<TMove> vMoves;
};
// Reads a stored line back, playing its moves from `start`. Throws ChessException "Move " move
// " in the stored variant is invalid", "The stored variant is too long: " count " moves", or
// "An error occurred." for a line without a name.
TVariant ParseVariantLine(const std::string& line, const TChessboard& start);

struct TVariantReading {
    TVariants variants;
    std::vector<std::string> vsMessages;  // one per line skipped because it cannot be read
};
// The variants of the entry's stored lines.
TVariantReading ReadVariants(const ProblemEntry& entry);
// Replaces the entry's stored lines with those of `variants`, in name order.
void WriteVariants(ProblemEntry& entry, const TVariants& variants);

}  // namespace moremate
