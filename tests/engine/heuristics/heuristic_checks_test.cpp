#include "engine/heuristics/heuristic_checks.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/positions.h"

namespace moremate {
namespace {

using TFields = THeuristicsDialogFields;

// Black king h8. The rook on a8 pins the black bishop on d8; the bishop on b2 pins nothing (its own
// pawn on c3 stands between); the queen on h1 pins nothing (two black pieces, h5 and h6, between).
const char* const kFen = "R2b3k/8/7n/7p/8/2P5/1B6/K6Q w - - 0 1";

THeuristicsCheck Check(const TFields& fields) {
    return CheckHeuristicsDialog(fields, test::Board(kFen));
}

TEST(HeuristicChecks, EveryMessage) {
    const std::string conflict =
        "Conflict of heuristics (\"Don't let bl.king move (unless immed.mate)\" and ";
    const std::string allowExc =
        "Heuristics 'Don't let black king move' is off, while 'allow exc' is on.\nIt "
        "requires correction.";
    const std::string capture = "Invalid number of figures to capture for relaxation of edge heuristics";
    const std::string snakeItems =
        "Sea snake: give the approach and the turn-back square, then the move of 'only after' if any (e.g. "
        "D2,E2,3).";
    // clang-format off
    const std::vector<std::pair<TFields, std::string>> cases = {
        {TFields{.m_bOutOfEdge = true, .m_bDontLetKingMove = true},
         conflict + "\"Don't let bl.king out of the edge\")"},
        {TFields{.m_bOutOfExtEdge = true, .m_bDontLetKingMove = true},
         conflict + "\"Don't let bl.king out of ext.edge\")"},
        {TFields{.m_bMoveUnlessOnEdge = true, .m_bDontLetKingMove = true},
         conflict + "\"Don't let bl.king move unless on the edge\")"},
        {TFields{.m_bOutOfExtEdge = true, .m_bMoveUnlessOnEdge = true},
         "Conflict of heuristics: select only one of 'Don't let black king out of ext.edge' and '(Don't let black "
             "king) move unless back to the edge'"},
        {TFields{.m_bAllowExc = true}, allowExc},
        {TFields{.m_bKeepNearCorner = true, .m_sCornerDistance = "3"},
         "Invalid maximum distance from corner in the parameter of heuristics 'Keep king near corner'"},
        {TFields{.m_bOnFigureCaptured = true, .m_sFiguresToCapture = "0"}, capture},
        {TFields{.m_bOnFigureCaptured = true, .m_sFiguresToCapture = "2x"}, capture},
        {TFields{.m_bOnAdvancedPawn = true, .m_bDeferCheck = true, .m_sDeferMoves = ""},
         "Invalid number of moves to defer"},
        {TFields{.m_bDeferCheck = true, .m_sDeferMoves = "3"},
         "Defer check is meaningful only when 'on advanced pawn' or 'on figure captured' selected."},
        {TFields{.m_bInclPawns = true, .m_bInclPromotablePawns = true},
         "Only one of additional options of Don't lose any figures (incl. pawns + incl.promotable pawns) can be "
             "selected."},
        {TFields{.m_bDontLeaveMainDiagonal = true, .m_sMainDiagonalFigure = "c5"},
         "Improper field (Black figure not let leave main diagonal)"},
        {TFields{.m_bDontLeaveMainDiagonal = true, .m_sMainDiagonalFigure = "d9"}, "Improper square: d9"},
        {TFields{.m_bDontLetFigureUnblock = true, .m_sBlockedFigures = "h6, d8,x1"}, "Improper square: x1"},
        {TFields{.m_bDontLetFigureUnblock = true, .m_sBlockedFigures = "h6 d8 H6"}, "Duplicate square: H6"},
        {TFields{.m_bKeyWhiteFigure = true, .m_sKeyWhiteFigure = "c3"}, "Invalid key white figure"},
        {TFields{.m_bKeyWhiteFigure = true, .m_sKeyWhiteFigure = "a1"}, "Invalid key white figure"},
        {TFields{.m_bKeyWhiteFigure = true, .m_sKeyWhiteFigure = "b2"},
         "Invalid key white figure (pinned piece not found)"},
        {TFields{.m_bKeyWhiteFigure = true, .m_sKeyWhiteFigure = "h1"},
         "Invalid key white figure (pinned piece not found)"},
        {TFields{.m_bKeyLine = true, .m_sKeyLine = "i"}, "Invalid field Key line"},
        {TFields{.m_bKeyDiagonal = true, .m_sKeyDiagonal = "a1-h7"}, "Invalid field Key diagonal"},
        {TFields{.m_bKeyDiagonal = true, .m_sKeyDiagonal = "c3-c3"}, "Invalid field Key diagonal"},
        {TFields{.m_bSkipPassive = true, .m_bSkipWorst = true},
         "Only one of the checkboxes can be set: 'skip passive wh.moves' / 'skip worst wh.moves'"},
        {TFields{.m_bFindForcedMate = true, .m_sFfmRelaxations = "1", .m_bSeaSnake = true},
         "FindForcedMate cannot be used together with SeaSnake."},
        {TFields{.m_bFindForcedMate = true, .m_sFfmRelaxations = "-1"},
         "Invalid value in field with number of heuristics relaxations for FFM (FindForcedMate)"},
        {TFields{.m_bFindForcedMate = true, .m_nFfmMode = kFfmThreat3, .m_sFfmRelaxations = "3"},
         "Number of heuristics relaxations for FFM is too large (max = 2)"},
        {TFields{.m_bFindForcedMate = true, .m_sFfmRelaxations = "0", .m_bFfmPartially = true},
         "'Partially' applies to '-WithOtherHeuristics' of FindForcedMate, which is off."},
        {TFields{.m_bOneColour = true},
         "Choose the squares of 'One color play possible': white squares only, black squares only or separated "
             "black bishop."},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2"}, snakeItems},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2,e2,1,2"}, snakeItems},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2,e9"}, "Improper square: e9"},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2 D2"}, "Duplicate square: D2"},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2,f2"},
         "Sea snake: the approach and the turn-back square must be neighbours."},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2,e3,x"}, "Sea snake: invalid move number of 'only after': x"},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2,e3", .m_sPendulum = "b7"},
         "Sea snake: the pendulum takes two squares (or none)."},
        {TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2,e3", .m_sPendulum = "b7,b0"}, "Improper square: b0"},
        {TFields{.m_bZugzwang = true, .m_sZugzwangMove = "Ka1-b2", .m_sZugzwangBy = "2"},
         "Invalid move for SH_ZUGZWANG"},
        {TFields{.m_bZugzwang = true, .m_sZugzwangMove = "", .m_sZugzwangBy = "2"}, "Invalid move for SH_ZUGZWANG"},
        {TFields{.m_bZugzwang = true, .m_sZugzwangMove = "Ka1-b1", .m_sZugzwangBy = "0"},
         "Invalid number of the move by which SH_ZUGZWANG is to return to its position"},
        {TFields{.m_sQuickMateDepth = "0"}, "Value of depth for quicker mate is out of range."},
        {TFields{.m_sQuickMateDepth = "10"}, "Value of depth for quicker mate is out of range."},
        // The first failing check in the fixed order gives the message.
        {TFields{.m_bAllowExc = true, .m_bSkipPassive = true, .m_bSkipWorst = true}, allowExc},
    };
    // clang-format on
    for (const auto& [fields, message] : cases) {
        const THeuristicsCheck check = Check(fields);
        EXPECT_FALSE(check.m_bOk) << message;
        EXPECT_EQ(check.m_sMessage, message);
    }
}

TEST(HeuristicChecks, AcceptedFields) {
    // clang-format off
    const std::vector<TFields> cases = {
        TFields{}, TFields{.m_bDontLetKingMove = true, .m_bAllowExc = true}, TFields{.m_bOutOfEdge = true,
            .m_bOutOfExtEdge = true},
        TFields{.m_bKeepNearCorner = true, .m_sCornerDistance = "2M"},
        TFields{.m_bOnFigureCaptured = true, .m_sFiguresToCapture = "15", .m_bDeferCheck = true, .m_sDeferMoves = "0"},
        TFields{.m_bOnFigureCaptured = false, .m_sFiguresToCapture = "junk"}, TFields{.m_bDontLeaveMainDiagonal = true},
        TFields{.m_bDontLeaveMainDiagonal = true, .m_sMainDiagonalFigure = "G7"},
        TFields{.m_bDontLeaveMainDiagonal = true, .m_sMainDiagonalFigure = "b7"},
        TFields{.m_bDontLetFigureUnblock = true, .m_sBlockedFigures = "h6,d8 h5"},
        TFields{.m_bKeyWhiteFigure = true, .m_sKeyWhiteFigure = "A8"}, TFields{.m_bKeyLine = true, .m_sKeyLine = "H"},
        TFields{.m_bKeyDiagonal = true, .m_sKeyDiagonal = "h1-a8"}, TFields{.m_sQuickMateDepth = "9"},
        TFields{.m_bFindForcedMate = true, .m_nFfmMode = kFfmThreat3, .m_sFfmRelaxations = "2"},
        TFields{.m_bFindForcedMate = true, .m_sFfmRelaxations = "0", .m_bFfmWithOthers = true, .m_bFfmPartially = true},
        TFields{.m_bFindForcedMate = false, .m_bFfmPartially = true},
        TFields{.m_bSeaSnake = true, .m_sSeaSnake = "d2 e3, 4", .m_sPendulum = "b7,b8"},
        TFields{.m_bOneColour = true, .m_eColourMode = TColourMode::SeparatedBlackBishop},
        TFields{.m_bZugzwang = true, .m_sZugzwangMove = "Ka1-b1", .m_sZugzwangBy = "3"},
    };
    // clang-format on
    for (const TFields& fields : cases) {
        const THeuristicsCheck check = Check(fields);
        EXPECT_TRUE(check.m_bOk) << check.m_sMessage;
        EXPECT_TRUE(check.m_vsNotes.empty());
    }
}

TEST(HeuristicChecks, FfmRelaxationsWithoutRelaxationGiveANote) {
    const THeuristicsCheck check =
        Check(TFields{.m_bFindForcedMate = true, .m_sFfmRelaxations = "2", .m_bRelaxHeuristics = false});
    EXPECT_TRUE(check.m_bOk);
    EXPECT_EQ(check.m_vsNotes,
              std::vector<std::string>{
                  "Note: relaxation of heuristics is off, so setting for FFM (2 time(s)) will be ignored"});
    EXPECT_TRUE(
        Check(TFields{.m_bFindForcedMate = true, .m_sFfmRelaxations = "0", .m_bRelaxHeuristics = false})
            .m_vsNotes.empty());
}

}  // namespace
}  // namespace moremate
