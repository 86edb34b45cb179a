// Sort indications: the moves a problem tells the engine to try first, stored on the line
// "//@SortIndications: " as move descriptions such as "~1. Qa7-a1+, b7:c8Q; Rh4-g4".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/chessboard.h"
#include "settings/reporter.h"

namespace moremate {

// One described move. A figure letter in front of the from-square restricts the moving piece; a
// check mark requires the move to give check; a negated description names a move not to prefer.
struct TSortMoveDescription {
    TMove move;
    uint8_t nFigure = 0;  // piece type named in front of the from-square, 0 when none
    bool bCapture = false;
    bool bNegated = false;
    int nChecks = 0;  // 1 for "+", 2 for "++"
    friend bool operator==(const TSortMoveDescription&, const TSortMoveDescription&) = default;
};

// Descriptions are separated by ","; groups by ";".
using TSortIndicationGroup = std::vector<TSortMoveDescription>;
using TSortIndications = std::vector<TSortIndicationGroup>;

// Reads the text after "//@SortIndications: ". Throws ChessException with "Move description too
// long (note that moves should be separated with a comma or semicolon)" or "Invalid description
// of SortIndication: " (in Polish "Niepoprawny opis SortIndication: ") and the piece at fault.
TSortIndications ParseSortIndications(std::string_view text, int language = kEnglish);
// One description read alone, with the same messages.
TSortMoveDescription ParseSortMoveDescription(std::string_view piece, int language = kEnglish);

// A description as the line spells it: "~Qa7:a1+", "e7-e8Q".
std::string SortMoveDescriptionText(const TSortMoveDescription& description);
// Every description of every group joined by "; ".
std::string SortIndicationsText(const TSortIndications& indications);

// Whether `move`, legal in `board`, is a move that `description` names (its negation aside).
bool Describes(const TSortMoveDescription& description, const TChessboard& board, const TMove& move);

}  // namespace moremate
