#include "engine/heuristics/position_type.h"

#include <gtest/gtest.h>

#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Directmate;

TEST(PositionType, FactsOfMaterialAndBlackKing) {
    // Black: Kh8, Rg8, Bf8, pawns g7 (pinned by the queen) and h7; White: Ke1, Qa1, Bh1.
    const TRootFacts f = RootFacts(Directmate("5brk/6pp/8/8/8/8/8/Q3K2B w", 5));
    EXPECT_EQ(f.stipulationMoves, 5);
    EXPECT_EQ(
        std::vector<int>({f.whiteFigures, f.blackFigures, f.blackPawns, f.whiteMaterial, f.blackMaterial}),
        std::vector<int>({2, 2, 2, 12, 10}));
    EXPECT_TRUE(f.blackKingOnEdge);
    EXPECT_TRUE(f.blackKingNearCorner);
    EXPECT_EQ(f.blackKingFlights, 0);
    EXPECT_EQ(f.blackPiecesNearBlackKing, 4);
    // The rook is shut in, the bishop has e7; the pinned g7 cannot move, h7 can.
    EXPECT_EQ(f.immobileBlackFigures, std::vector<Square>{62});
    EXPECT_EQ(f.immobileBlackPawns, 1);
}

TEST(PositionType, ChosenRulesFollowThePosition) {
    constexpr uint32_t kEdge = SH_KEEPKINGONTHEEDGE, kExtEdge = SH_KEEPKINGWITHINEXTEDGE;
    constexpr uint32_t kBlockade = SH_USEBLOCKBLACKPAWNSLEVEL, kTriangles = SH_ZUGZWANGTRIANGLES;
    // The black king's place and flights, shut-in figures, material, queens, pawn endings, a single
    // guarded door (g8 by the knight alone), and problems up to #6 searched without heuristics.
    // clang-format off
    const struct { const char* fen; int moves; uint32_t has, hasNot; } cases[] = {
        {"5brk/6pp/8/8/8/8/8/Q3K2B w", 8, kEdge, 0},          {"k7/8/1K6/8/8/8/8/7R w", 8, kEdge, 0},
        {"8/1k6/8/1K6/8/8/8/2R5 w", 8, kExtEdge, kEdge},      {"8/8/8/3k4/8/8/8/R3K3 w", 8, SH_3MOVESTOMATE,
         kEdge | kExtEdge},
        {"rbk5/ppp5/8/8/8/8/7R/4KBQR w", 8, SH_DONTLETFIGUREUNBLOCK | SH_DONTLOSEANYFIGURES, SH_SINGLEQUEENMATE},
        {"7k/p7/p7/p7/Q7/8/8/4K3 w", 8, SH_SINGLEQUEENMATE, SH_DONTLOSEANYFIGURES},
        {"8/8/8/3k4/8/8/8/RQ2K2q w", 8, 0, SH_3MOVESTOMATE},  {"8/8/2k5/p7/P3p3/4P3/2K5/8 w", 8,
         kBlockade | kTriangles, 0},
        {"k7/p7/P7/8/4p3/4P2R/8/4K3 w", 8, kBlockade, kTriangles}, {"8/8/2k5/p7/8/8/2K5/8 w", 8, 0,
         kBlockade | kTriangles},
        {"7k/6pp/5N2/8/8/8/8/4K3 w", 8, SH_KEYSQUARE, 0},     {"7k/6p1/5N2/8/8/8/8/4K3 w", 8, 0, SH_KEYSQUARE},
        {"4k1b1/R5Bp/4p1p1/B3P1P1/8/8/1K6/8 w", 9, 0, SH_SEASNAKE},
        {"8/8/8/3k4/8/8/8/R3K3 w", 6, 0, ~0u},                {"5brk/6pp/8/8/8/8/8/Q3K2B w", 3, 0, ~0u},
    };
    // clang-format on
    for (const auto& c : cases) {
        const uint32_t mask = PositionTypeHeuristics(Directmate(c.fen, c.moves)).mask;
        EXPECT_EQ(mask & c.has, c.has) << c.fen;
        EXPECT_EQ(mask & c.hasNot, 0u) << c.fen;
    }
    // The parameters: STRICT in the corner without flights, not with one; the blocked squares; the door.
    EXPECT_EQ(PositionTypeHeuristics(Directmate("5brk/6pp/8/8/8/8/8/Q3K2B w", 8)).params.kingMode,
              TKingMode::Strict);
    EXPECT_EQ(PositionTypeHeuristics(Directmate("k7/8/1K6/8/8/8/8/7R w", 8)).params.kingMode, TKingMode::Off);
    const THeuristicSet blocked = PositionTypeHeuristics(Directmate("rbk5/ppp5/8/8/8/8/7R/4KBQR w", 8));
    ASSERT_EQ(blocked.params.blockedCount, 2);
    EXPECT_EQ(blocked.params.blockedFigures[0] + 100 * blocked.params.blockedFigures[1], 56 + 5700);
    EXPECT_EQ(PositionTypeHeuristics(Directmate("7k/6pp/5N2/8/8/8/8/4K3 w", 8)).params.keySquare, 62);
}

TEST(PositionType, SeaSnakeFindsPendulumAndTriangle) {
    // Black can only swing Bg8-f7-g8; the white king b2 has free room for its triangle.
    const char* snake = "4k1b1/R5Bp/4p1pP/B3P1P1/8/8/1K6/8 w";
    THeuristicSet s = PositionTypeHeuristics(Directmate(snake, 9));
    ASSERT_TRUE(s.Has(SH_SEASNAKE));
    EXPECT_EQ(s.params.seaSnake.pendulum[0], 62);
    EXPECT_EQ(s.params.seaSnake.pendulum[1], 53);
    const int king = 9;  // b2
    EXPECT_EQ(KingDistance(s.params.seaSnake.approach, king), 1);
    EXPECT_EQ(KingDistance(s.params.seaSnake.turnBack, king), 1);
    EXPECT_EQ(KingDistance(s.params.seaSnake.approach, s.params.seaSnake.turnBack), 1);
}

TEST(PositionType, DynamicDlfuWhenTheKingWallsInItsFigures) {
    // Only the rook h8 is shut in; Ke7-f7 would shut in the bishop g8 too.
    TPositionType t = PositionTypeCheck(Directmate("6br/4k1pp/8/8/8/8/8/K2R4 w", 8));
    EXPECT_TRUE(t.pendingDynamicDlfu);
    EXPECT_FALSE(t.set.Has(SH_DONTLETFIGUREUNBLOCK));
    ASSERT_EQ(t.set.params.blockedCount, 2);
    EXPECT_EQ(t.set.params.blockedFigures[0], 62);
    EXPECT_EQ(t.set.params.blockedFigures[1], 63);
    // A king far away walls in nothing.
    t = PositionTypeCheck(Directmate("6br/6pp/8/8/4k3/8/8/K2R4 w", 8));
    EXPECT_FALSE(t.pendingDynamicDlfu);
    // Figures already shut in at the start get the static rule instead.
    t = PositionTypeCheck(Directmate("rbk5/ppp5/8/8/8/8/7R/4KBQR w", 8));
    EXPECT_FALSE(t.pendingDynamicDlfu);
    EXPECT_TRUE(t.set.Has(SH_DONTLETFIGUREUNBLOCK));
}

}  // namespace
}  // namespace moremate
