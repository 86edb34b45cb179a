#include "engine/heuristics/position_type.h"

#include <gtest/gtest.h>

#include "core/fen.h"
#include "core/validation.h"
#include "tests/core/test_line.h"

namespace moremate {
namespace {

// The start of a "#moves" problem.
TChessboard Root(const char* fen, int moves) {
    return test::Problem(fen, 2 * moves - 1);
}

TEST(PositionType, FactsOfMaterialAndBlackKing) {
    // Black: Kh8, Rg8, Bf8, pawns g7 (pinned by the queen) and h7; White: Ke1, Qa1, Bh1.
    const TRootFacts f = RootFacts(Root("5brk/6pp/8/8/8/8/8/Q3K2B w - - 0 1", 5));
    EXPECT_EQ(f.stipulationMoves, 5);
    EXPECT_EQ(f.whiteFigures, 2);
    EXPECT_EQ(f.blackFigures, 2);
    EXPECT_EQ(f.blackPawns, 2);
    EXPECT_EQ(f.whiteMaterial, 12);
    EXPECT_EQ(f.blackMaterial, 10);
    EXPECT_TRUE(f.blackKingOnEdge);
    EXPECT_TRUE(f.blackKingNearCorner);
    EXPECT_EQ(f.blackKingFlights, 0);
    EXPECT_EQ(f.blackPiecesNearBlackKing, 4);
    // The rook is shut in, the bishop has e7; the pinned g7 cannot move, h7 can.
    EXPECT_EQ(f.immobileBlackFigures, std::vector<Square>{62});
    EXPECT_EQ(f.immobileBlackPawns, 1);
}

TEST(PositionType, EdgeRulesFollowTheBlackKingsPlaceAndFlights) {
    // King in the corner without flights: the edge rule in STRICT mode.
    THeuristicSet s = PositionTypeHeuristics(Root("5brk/6pp/8/8/8/8/8/Q3K2B w - - 0 1", 8));
    EXPECT_TRUE(s.Has(SH_KEEPKINGONTHEEDGE));
    EXPECT_EQ(s.params.kingMode, TKingMode::Strict);
    // On the edge with one flight, b8.
    s = PositionTypeHeuristics(Root("k7/8/1K6/8/8/8/8/7R w - - 0 1", 8));
    EXPECT_TRUE(s.Has(SH_KEEPKINGONTHEEDGE));
    EXPECT_EQ(s.params.kingMode, TKingMode::Off);
    // On the line next to the edge, hemmed in: the ext.edge rule.
    s = PositionTypeHeuristics(Root("8/1k6/8/1K6/8/8/8/2R5 w - - 0 1", 8));
    EXPECT_FALSE(s.Has(SH_KEEPKINGONTHEEDGE));
    EXPECT_TRUE(s.Has(SH_KEEPKINGWITHINEXTEDGE));
    // In the middle of the board: neither.
    s = PositionTypeHeuristics(Root("8/8/8/3k4/8/8/8/R3K3 w - - 0 1", 8));
    EXPECT_FALSE(s.Has(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE));
}

TEST(PositionType, BlockedFiguresMaterialAndQueenRules) {
    // Bishop a8 and rook b8 shut in by their own pawns and king: DLFU on a8, b8.
    THeuristicSet s = PositionTypeHeuristics(Root("rbk5/ppp5/8/8/8/8/7R/4KBQR w - - 0 1", 8));
    ASSERT_TRUE(s.Has(SH_DONTLETFIGUREUNBLOCK));
    ASSERT_EQ(s.params.blockedCount, 2);
    EXPECT_EQ(s.params.blockedFigures[0], 56);
    EXPECT_EQ(s.params.blockedFigures[1], 57);
    // White is far ahead in material: don't lose any figures.
    EXPECT_TRUE(s.Has(SH_DONTLOSEANYFIGURES));
    EXPECT_FALSE(s.Has(SH_SINGLEQUEENMATE));
    // A lone white queen against black pawns that cannot move.
    s = PositionTypeHeuristics(Root("7k/p7/p7/p7/Q7/8/8/4K3 w - - 0 1", 8));
    EXPECT_TRUE(s.Has(SH_SINGLEQUEENMATE));
    EXPECT_FALSE(s.Has(SH_DONTLOSEANYFIGURES));
}

TEST(PositionType, ShortProblemsGetNoHeuristicsAndThreeMovesNeedsNoBlackQueen) {
    EXPECT_TRUE(PositionTypeHeuristics(Root("8/8/8/3k4/8/8/8/R3K3 w - - 0 1", 8)).Has(SH_3MOVESTOMATE));
    // Problems up to #6 are searched without heuristics at once.
    EXPECT_EQ(PositionTypeHeuristics(Root("8/8/8/3k4/8/8/8/R3K3 w - - 0 1", 6)).mask, 0u);
    EXPECT_EQ(PositionTypeHeuristics(Root("5brk/6pp/8/8/8/8/8/Q3K2B w - - 0 1", 3)).mask, 0u);
    EXPECT_FALSE(PositionTypeHeuristics(Root("8/8/8/3k4/8/8/8/RQ2K2q w - - 0 1", 8)).Has(SH_3MOVESTOMATE));
}

TEST(PositionType, PawnBlockadeAndTempoFight) {
    // Pawn ending, Black's pawns a5 and e4 blocked: blockade level and zugzwang triangles.
    THeuristicSet s = PositionTypeHeuristics(Root("8/8/2k5/p7/P3p3/4P3/2K5/8 w - - 0 1", 8));
    EXPECT_TRUE(s.Has(SH_USEBLOCKBLACKPAWNSLEVEL));
    EXPECT_TRUE(s.Has(SH_ZUGZWANGTRIANGLES));
    // A white rook on the board: no pawn ending, the blockade alone.
    s = PositionTypeHeuristics(Root("k7/p7/P7/8/4p3/4P2R/8/4K3 w - - 0 1", 8));
    EXPECT_TRUE(s.Has(SH_USEBLOCKBLACKPAWNSLEVEL));
    EXPECT_FALSE(s.Has(SH_ZUGZWANGTRIANGLES));
    // The a-pawn can move: neither.
    s = PositionTypeHeuristics(Root("8/8/2k5/p7/8/8/2K5/8 w - - 0 1", 8));
    EXPECT_FALSE(s.Has(SH_USEBLOCKBLACKPAWNSLEVEL | SH_ZUGZWANGTRIANGLES));
}

TEST(PositionType, KeySquareIsTheOnlySinglyGuardedDoor) {
    // Kh8 walled in by g7, h7; only g8 is free, guarded by the knight alone.
    THeuristicSet s = PositionTypeHeuristics(Root("7k/6pp/5N2/8/8/8/8/4K3 w - - 0 1", 8));
    ASSERT_TRUE(s.Has(SH_KEYSQUARE));
    EXPECT_EQ(s.params.keySquare, 62);
    // Without h7 the knight guards two doors, g8 and h7: no single key square.
    s = PositionTypeHeuristics(Root("7k/6p1/5N2/8/8/8/8/4K3 w - - 0 1", 8));
    EXPECT_FALSE(s.Has(SH_KEYSQUARE));
}

TEST(PositionType, SeaSnakeFindsPendulumAndTriangle) {
    // Black can only swing Bg8-f7-g8; the white king b2 has free room for its triangle.
    const char* snake = "4k1b1/R5Bp/4p1pP/B3P1P1/8/8/1K6/8 w - - 0 1";
    THeuristicSet s = PositionTypeHeuristics(Root(snake, 9));
    ASSERT_TRUE(s.Has(SH_SEASNAKE));
    EXPECT_EQ(s.params.seaSnake.pendulum[0], 62);
    EXPECT_EQ(s.params.seaSnake.pendulum[1], 53);
    const int king = 9;  // b2
    EXPECT_EQ(KingDistance(s.params.seaSnake.approach, king), 1);
    EXPECT_EQ(KingDistance(s.params.seaSnake.turnBack, king), 1);
    EXPECT_EQ(KingDistance(s.params.seaSnake.approach, s.params.seaSnake.turnBack), 1);
    // Without the pawn h6 Black has h7-h6 and h7-h5 besides the bishop: no sea snake.
    EXPECT_FALSE(
        PositionTypeHeuristics(Root("4k1b1/R5Bp/4p1p1/B3P1P1/8/8/1K6/8 w - - 0 1", 9)).Has(SH_SEASNAKE));
}

TEST(PositionType, DynamicDlfuWhenTheKingWallsInItsFigures) {
    // Only the rook h8 is shut in; Ke7-f7 would shut in the bishop g8 too.
    TPositionType t = PositionTypeCheck(Root("6br/4k1pp/8/8/8/8/8/K2R4 w - - 0 1", 8));
    EXPECT_TRUE(t.pendingDynamicDlfu);
    EXPECT_FALSE(t.set.Has(SH_DONTLETFIGUREUNBLOCK));
    ASSERT_EQ(t.set.params.blockedCount, 2);
    EXPECT_EQ(t.set.params.blockedFigures[0], 62);
    EXPECT_EQ(t.set.params.blockedFigures[1], 63);
    // A king far away walls in nothing.
    t = PositionTypeCheck(Root("6br/6pp/8/8/4k3/8/8/K2R4 w - - 0 1", 8));
    EXPECT_FALSE(t.pendingDynamicDlfu);
    // Figures already shut in at the start get the static rule instead.
    t = PositionTypeCheck(Root("rbk5/ppp5/8/8/8/8/7R/4KBQR w - - 0 1", 8));
    EXPECT_FALSE(t.pendingDynamicDlfu);
    EXPECT_TRUE(t.set.Has(SH_DONTLETFIGUREUNBLOCK));
}

}  // namespace
}  // namespace moremate
