#include "engine/position_type.h"

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

}  // namespace
}  // namespace moremate
