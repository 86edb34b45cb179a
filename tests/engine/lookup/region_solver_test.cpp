#include "engine/lookup/region_solver.h"

#include <gtest/gtest.h>

#include <cstring>

#include <algorithm>
#include <thread>

#include "core/movegen.h"
#include "engine/lookup/region_analysis.h"
#include "engine/lookup/region_hook.h"
#include "engine/lookup/region_table.h"
#include "engine/search/mate_search.h"
#include "engine/state/search_result.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;

// A position read into its class and key and set up again is the same position, with the same
// moves.
TEST(RegionCodec, SetsUpThePositionItRead) {
    for (const char* fen : {"4b3/8/3p2P1/3p1p2/N1pPkp2/1pP2p2/3K1P2/8 w - - 0 1",
                            "4b3/8/3p2P1/3p1p2/N1pPkp2/1pP2p2/3K1P2/8 b - - 0 1",
                            "8/8/8/3k4/8/8/1N1N4/R2K3R w - -", "8/8/8/3k4/8/8/1N1N4/4K3 b - -"}) {
        SCOPED_TRACE(fen);
        const TChessboard board = Board(fen);
        TRegionPosition position;
        ASSERT_TRUE(ReadRegionPosition(board, position));
        TChessboard again;
        SetUpRegionBoard(position.regionClass, position.key, again);
        EXPECT_EQ(std::memcmp(board.squares, again.squares, 64), 0);
        EXPECT_EQ(board.WhiteToMove(), again.WhiteToMove());
        EXPECT_EQ(CountLegalMoves(board), CountLegalMoves(again));
        EXPECT_EQ(board.InCheck(), again.InCheck());
    }
}

// Keys of a class's positions are stored, overwritten and found again across the table's growth.
TEST(RegionTable, KeepsEveryKeyThroughGrowth) {
    CRegionTable table;
    for (uint64_t k = 0; k < 5000; ++k) table.Set(k * 2654435761ULL % (1ULL << 40), static_cast<uint32_t>(k));
    for (uint64_t k = 0; k < 5000; k += 2)
        table.Set(k * 2654435761ULL % (1ULL << 40), static_cast<uint32_t>(k + 1));
    EXPECT_EQ(table.Size(), 5000u);
    for (uint64_t k = 0; k < 5000; ++k)
        EXPECT_EQ(table.Find(k * 2654435761ULL % (1ULL << 40)),
                  static_cast<uint32_t>(k % 2 == 0 ? k + 1 : k));
    EXPECT_EQ(table.Find(1ULL << 45), CRegionTable::kAbsent);
}

// Positions with few pieces and no castling, White to move.
const char* const kSmallMates[] = {"7k/8/6K1/8/8/8/8/R7 w - -", "7k/8/5K2/8/8/8/8/R7 w - -",
                                   "k7/8/2K5/8/8/8/8/6Q1 w - -"};

// The shortest mate of a White position as the ordinary search finds it, in moves; 0 for none
// within six.
int ShortestMate(const TChessboard& board) {
    TMateSearch plain(TSearchEnvironment{});
    TChessboard node = board;
    node.movesLeft = 11;
    const int halfMoves = plain.ShortestMate(node);
    return halfMoves == 0 ? 0 : (halfMoves + 1) / 2;
}

// What a region settles is a forced mate of that length (never shorter than the shortest), and
// the hook settles a node exactly when its mate fits the half-moves left.
TEST(RegionSolver, DistancesAreMatesOfThatLength) {
    for (const char* fen : kSmallMates) {
        SCOPED_TRACE(fen);
        CRegionSolver solver(TRegionLimits{}, nullptr);
        const TChessboard board = Board(fen);
        const int moves = ShortestMate(board);
        ASSERT_GT(moves, 0);
        EXPECT_EQ(solver.Distance(board, true, 2 * moves - 1), moves);
        CRegionHook hook(solver, nullptr);
        uint8_t result = kUnknownResult;
        TChessboard node = board;
        node.movesLeft = static_cast<int16_t>(2 * moves + 1);
        EXPECT_TRUE(hook.Settle(node, result));
        EXPECT_EQ(result, kMate);
        node.movesLeft = static_cast<int16_t>(2 * moves - 1);
        EXPECT_EQ(hook.Settle(node, result), moves > 1);
        node.movesLeft = static_cast<int16_t>(2 * moves - 3);
        if (node.movesLeft > 0) {
            EXPECT_FALSE(hook.Settle(node, result));
        }
    }
}

// Every Black position of a solved region with a distance is lost within it, as the ordinary
// search sees it: the proofs hold in the region's inside, not only at its start.
TEST(RegionSolver, BlackPositionsOfARegionAreLostAsStated) {
    CRegionSolver solver(TRegionLimits{}, nullptr);
    const TChessboard start = Board("7k/8/5K2/8/8/8/8/R7 w - -");
    ASSERT_EQ(solver.Distance(start, true, 3), 2);
    TMoveList moves;
    GenerateLegalMoves(start, moves);
    int checked = 0;
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(start, m, child);
        const uint8_t d = solver.Distance(child, false, 0);
        if (d == kNoDistance || d > 2) continue;
        TMateSearch plain(TSearchEnvironment{});
        child.movesLeft = static_cast<int16_t>(2 * d);
        EXPECT_EQ(plain.FindForcedMate(child), kMate) << MoveToText(start, m);
        ++checked;
    }
    EXPECT_GT(checked, 0);
}

// White's moves that let the Black king out of its cage are not followed: here every mate starts
// by giving it a square, so the region claims none, and no node is settled falsely.
TEST(RegionSolver, ClaimsNoMateThatNeedsTheKingLetOut) {
    const TChessboard board = Board("k7/p7/P7/8/8/8/8/KR6 w - -");
    ASSERT_EQ(ShortestMate(board), 3);
    CRegionSolver solver(TRegionLimits{}, nullptr);
    EXPECT_EQ(solver.Distance(board, true, 99), kNoDistance);
}

// Positions with castling rights, an en passant capture or too many pieces are no region's.
TEST(RegionSolver, LeavesOutWhatARegionCannotHold) {
    CRegionSolver solver(TRegionLimits{}, nullptr);
    EXPECT_EQ(solver.Distance(Board("4k3/8/8/8/8/8/8/R3K3 w - -"), true, 99), kNoDistance);
    EXPECT_EQ(solver.Distance(Board("1nbqkbnr/8/8/8/8/8/8/RNBQ1BNK w - -"), true, 99), kNoDistance);
    TRegionLimits tiny;
    tiny.maxEstimate = 100;
    CRegionSolver small(tiny, nullptr);
    EXPECT_EQ(small.Distance(Board("7k/8/5K2/8/8/8/8/R7 w - -"), true, 3), kNoDistance);
    EXPECT_EQ(small.Stats().tooLarge, 1u);
}

// Threads asking one solver at once get the same answers as one thread alone.
TEST(ConcurrentRegionSolver, ThreadsAgree) {
    CRegionSolver alone(TRegionLimits{}, nullptr), shared(TRegionLimits{}, nullptr);
    std::vector<uint8_t> expected, first(std::size(kSmallMates)), second(std::size(kSmallMates));
    for (const char* fen : kSmallMates) expected.push_back(alone.Distance(Board(fen), true, 99));
    auto ask = [&shared](std::vector<uint8_t>& out, bool reversed) {
        for (size_t i = 0; i < out.size(); ++i) {
            const size_t k = reversed ? out.size() - 1 - i : i;
            out[k] = shared.Distance(Board(kSmallMates[k]), true, 99);
        }
    };
    std::thread a(ask, std::ref(first), false), b(ask, std::ref(second), true);
    a.join();
    b.join();
    EXPECT_EQ(first, expected);
    EXPECT_EQ(second, expected);
}

}  // namespace
}  // namespace moremate
