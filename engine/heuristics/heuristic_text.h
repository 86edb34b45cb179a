// The text forms of heuristic sets: the parameter text of each heuristic, the display names, the
// text of a whole set as logs, problem files and solution details show it, and the readers that
// turn those texts back into a set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "heuristic_set.h"

namespace moremate {

// "A1" .. "H8"; nothing for a byte of 64 or more.
std::string HeuristicSquareText(Square square);
// The square of "a1" .. "h8" in either case; nullopt for any other text.
std::optional<Square> SquareFromText(std::string_view text);

// "CheckOnly", "#1", "#1+", "#2", "#2+", "#3", "#4", "#5" for the modes 2..9; nothing otherwise.
std::string_view FindForcedMateModeText(uint8_t mode);
// The mode of one of the texts above (exact case); 0 for any other text.
uint8_t FindForcedMateModeFromText(std::string_view text);

// The parameter text of the heuristic `bit` ("STRICT,incl.corner", "3S", "#2+-Preliminary");
// empty for a heuristic without a printed parameter.
std::string HeuristicParameterText(uint32_t bit, const THeuristicParameters& params);

// The heuristic's name, "(" parameters ")" when there are any, replaced by its display name where
// there is one ("SH_DONTLETKINGMOVE", "SH_DONTLETKINGMOVE(excptns)", "SH_SKIPPASSIVEWHITEMOVES").
std::string HeuristicText(uint32_t bit, const THeuristicParameters& params);

// What the set's text needs to know beyond the set itself.
struct THeuristicTextContext {
    bool m_bQuickMode = false;      // quick mode applies: asked for, and the problem not in safe mode
    int m_nAlmostStrictPieces = 2;  // pieces counted by the ALMOST_STRICT exception in the position
};

// The heuristics in ascending bit order joined by ", ", then ",  QuickMode" where quick mode
// affects the set, then " (CannotApplyDLFUDynamically)" when dynamic DLFU is off.
std::string HeuristicSetText(const THeuristicSet& set, const THeuristicTextContext& context = {});

// Reads the parameter text of the heuristic `bit` into `params`. The text states every printed
// parameter of that heuristic: those it leaves out are reset, except that an edge text without
// relaxation items keeps the dynamic relaxation as it was (the ext.edge text may carry it).
// Throws ChessException naming the heuristic and the item that cannot be read.
void ReadHeuristicParameters(uint32_t bit, std::string_view text, THeuristicParameters& params);

// Reads one item of a set's text, "NAME", "NAME(params)" or a display name, into `set`: the bit is
// added and its parameters read, and returned; "..." (an unnamed bit) reads as 0 and changes
// nothing. Throws ChessException for an unknown name or unreadable text.
uint32_t ReadHeuristicItem(std::string_view item, THeuristicSet& set);

// A set read back from its text, with the quick-mode ending noted.
struct THeuristicSetReading {
    THeuristicSet m_set;
    bool m_bQuickMode = false;
};

// Reads the text written by HeuristicSetText. Items "..." (unnamed bits) are skipped.
THeuristicSetReading ReadHeuristicSetText(std::string_view text);

}  // namespace moremate
