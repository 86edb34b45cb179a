// The checks made when a heuristic set is chosen in the heuristics dialog, over the dialog's
// fields as they stand, independent of any window.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/chessboard.h"
#include "heuristic_set.h"

namespace moremate {

// The dialog's check boxes and the texts of its fields; every field has an initializer, so that a
// set of fields can be written with the few that matter named.
struct THeuristicsDialogFields {
    bool m_bOutOfEdge = false;         // "Don't let bl.king out of the edge"
    bool m_bOutOfExtEdge = false;      // "Don't let bl.king" + "out of ext.edge"
    bool m_bMoveUnlessOnEdge = false;  // "move unless on the edge"
    bool m_bDontLetKingMove = false;   // "Don't let bl.king move (unless immed.mate)"
    bool m_bAllowExc = false;          // "allow exc"
    bool m_bKeepNearCorner = false;    // "Keep king near corner, max."
    std::string m_sCornerDistance{};   // as its parameter text: "3S" (squares) or "2M" (moves)
    bool m_bOnAdvancedPawn = false;    // dynamic relaxation "on advanced pawn"
    bool m_bOnFigureCaptured = false;  // dynamic relaxation "on figure captured"
    std::string m_sFiguresToCapture{};
    bool m_bDeferCheck = false;
    std::string m_sDeferMoves{};
    bool m_bInclPawns = false;            // "Don't lose any figures": "incl. pawns"
    bool m_bInclPromotablePawns = false;  // "incl.promotable pawns"
    bool m_bDontLeaveMainDiagonal = false;
    std::string m_sMainDiagonalFigure{};  // empty: the white bishop's rule only
    bool m_bDontLetFigureUnblock = false;
    std::string m_sBlockedFigures{};  // squares separated by commas or blanks
    bool m_bKeyWhiteFigure = false;
    std::string m_sKeyWhiteFigure{};
    bool m_bKeyLine = false;
    std::string m_sKeyLine{};  // a file letter
    bool m_bKeyDiagonal = false;
    std::string m_sKeyDiagonal{};  // two squares joined by "-"
    bool m_bSkipPassive = false;   // "skip passive wh.moves"
    bool m_bSkipWorst = false;     // "skip worst wh.moves"
    bool m_bFindForcedMate = false;
    uint8_t m_nFfmMode = kFfmThreat1;  // TFindForcedMateMode of the chosen radio button
    std::string m_sFfmRelaxations{};
    bool m_bFfmWithOthers = false;  // "-WithOtherHeuristics"
    bool m_bFfmPartially = false;   // its "Partially" variant: not on the first moves
    bool m_bSeaSnake = false;
    std::string m_sSeaSnake{};  // "approach,turn-back[,only after]" as its parameter text: "D2,E2,3"
    std::string m_sPendulum{};  // the two squares of Black's pendulum piece, or nothing
    bool m_bOneColour = false;  // "One color play possible"
    TColourMode m_eColourMode = TColourMode::None;
    bool m_bZugzwang = false;         // "Zugzwang position to return to"
    std::string m_sZugzwangMove{};    // White's move from the problem's position into that position
    std::string m_sZugzwangBy{};      // the number of White's move by which the line is back in it
    bool m_bRelaxHeuristics = true;   // "Let relax heuristics"
    std::string m_sQuickMateDepth{};  // empty: the engine's default
};

// The verdict: the first failed check's message, or success with notes to show.
struct THeuristicsCheck {
    bool m_bOk = true;
    std::string m_sMessage{};
    std::vector<std::string> m_vsNotes;
};

// Quick-mate depths the dialog accepts.
inline constexpr int kMinQuickMateDepth = 1;
inline constexpr int kMaxQuickMateDepth = 9;

// The pieces of a list of squares between commas and blanks ("a1, b2 c3").
std::vector<std::string_view> SquareTexts(std::string_view list);

// Runs the checks in their fixed order on the fields; `position` is the problem's position, in
// which the key white figure must pin a black piece against the black king.
THeuristicsCheck CheckHeuristicsDialog(const THeuristicsDialogFields& fields, const TChessboard& position);

}  // namespace moremate
