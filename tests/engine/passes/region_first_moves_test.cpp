#include "engine/passes/region_first_moves.h"

#include <gtest/gtest.h>

#include "core/movegen.h"
#include "engine/search/mate_search.h"
#include "engine/state/search_result.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;

// Whether the ordinary search mates after `m` within the half-moves left.
bool MatesAfter(const TChessboard& root, const TMove& m) {
    TChessboard child;
    PlayMove(root, m, child);
    TMateSearch plain(TSearchEnvironment{});
    return plain.FindForcedMate(child) == kMate;
}

// The first moves a solved root region hands to the passes are mates within the stipulation,
// shortest first; none for a stipulation too short or without time.
TEST(RegionFirstMoves, AreMatesWithinTheStipulation) {
    TChessboard root = Board("7k/8/5K2/8/8/8/8/R7 w - -");
    root.movesLeft = root.movesAtStart = 5;
    CRegionSolver solver(TRegionLimits{}, nullptr);
    const std::vector<TMove> first = RegionFirstMoves(root, solver, 10000, 2);
    ASSERT_EQ(first.size(), 2u);
    for (const TMove& m : first) EXPECT_TRUE(MatesAfter(root, m)) << MoveToText(root, m);
    TChessboard afterFirst;
    PlayMove(root, first.front(), afterFirst);
    EXPECT_LE(solver.Distance(afterFirst, false, afterFirst.movesLeft), 1);

    root.movesLeft = root.movesAtStart = 1;
    CRegionSolver again(TRegionLimits{}, nullptr);
    EXPECT_TRUE(RegionFirstMoves(root, again, 10000, 99).empty());

    root.movesLeft = root.movesAtStart = 5;
    CRegionSolver late(TRegionLimits{}, nullptr);
    EXPECT_TRUE(RegionFirstMoves(root, late, 0, 99).empty());
}

// A key that leaves the root's region, a pawn's check: its mate is proven by the region the pawn
// enters.
TEST(RegionFirstMoves, FollowAMoveOutOfTheRegion) {
    TChessboard root = Board("k7/2K5/1P6/8/8/8/8/8 w - -");
    root.movesLeft = root.movesAtStart = 5;
    CRegionSolver solver(TRegionLimits{}, nullptr);
    const std::vector<TMove> first = RegionFirstMoves(root, solver, 10000, 99);
    ASSERT_FALSE(first.empty());
    EXPECT_EQ(MoveToText(root, first.front()), "b6-b7");
    for (const TMove& m : first) EXPECT_TRUE(MatesAfter(root, m)) << MoveToText(root, m);
}

// The engine solves regions first for blocked positions only: locked pawns and a small cage, not
// open play, not an endgame without pawns.
TEST(RegionFirstMoves, ModesAndTheEnginesChoice) {
    TRegionMode mode = TRegionMode::Off;
    EXPECT_TRUE(ReadRegionMode("on", mode));
    EXPECT_EQ(mode, TRegionMode::On);
    EXPECT_TRUE(ReadRegionMode("auto", mode));
    EXPECT_EQ(mode, TRegionMode::Auto);
    EXPECT_FALSE(ReadRegionMode("sometimes", mode));
    EXPECT_EQ(mode, TRegionMode::Auto);
    EXPECT_TRUE(RegionsDecide(Board("4b3/8/3p2P1/3p1p2/N1pPkp2/1pP2p2/3K1P2/8 w - - 0 1")));
    EXPECT_FALSE(RegionsDecide(Board("4b3/8/3p4/3p1p2/N1pPkp2/1pP2p2/3K1P2/6Q1 w - - 0 1")));
    EXPECT_FALSE(RegionsDecide(Board("4b3/8/3p2P1/3p1p2/N1pPk3/1pP2p2/3K1P2/8 w - - 0 1")));
    EXPECT_FALSE(RegionsDecide(Board("7k/8/5K2/8/8/8/8/R7 w - -")));
}

}  // namespace
}  // namespace moremate
