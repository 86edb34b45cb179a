#include "engine/search/move_ordering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "core/gives_check.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

// Lists of every length with scores of both kinds the sort tells apart (small ones counted out,
// large ones sorted one by one), many of them equal: the result must be the stable sort's.
TEST(SortByScore, IsAStableSortByDescendingScore) {
    std::mt19937 random(17);
    for (int round = 0; round < 2000; ++round) {
        const int count = static_cast<int>(random() % 80);
        TMoveList list;
        list.count = 0;
        int score[256];
        std::vector<std::pair<int, TMove>> expected;
        for (int i = 0; i < count; ++i) {
            const TMove m{static_cast<Square>(i % 64), static_cast<Square>(i / 64), 0};
            const int kind = static_cast<int>(random() % 3);
            score[i] = kind == 0 ? static_cast<int>(random() % 8)
                                 : (kind == 1 ? static_cast<int>(random() % 40)
                                              : 10000 + static_cast<int>(random() % 3));
            list.moves[list.count++] = m;
            expected.emplace_back(score[i], m);
        }
        std::stable_sort(expected.begin(), expected.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
        SortByScore(list, score);
        ASSERT_EQ(list.count, count);
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(list.moves[i], expected[static_cast<size_t>(i)].second) << round;
    }
}

// Black's defences with a sibling's refutation known (a quiet king move): with checks first every
// check comes before it, then the killer, then the capture; without, the killer leads. Nothing is
// lost or doubled either way.
TEST(OrderBlackMoves, ChecksFirstThenTheKillerThenCaptures) {
    const TChessboard board = test::Board("3qk2r/8/8/3N4/8/8/P7/6K1 b k - 0 1");
    TMoveList generated;
    GenerateLegalMoves(board, generated);
    const TMove* killer =
        std::find_if(generated.moves, generated.moves + generated.count,
                     [](const TMove& m) { return m.from == MakeSquare(4, 7) && m.to == MakeSquare(5, 6); });
    ASSERT_NE(killer, generated.moves + generated.count);
    TKillerMoves killers;
    killers.Remember(*killer);
    const auto sorted = [&](const std::vector<TMove>& list) {
        std::vector<TMove> copy(list);
        std::sort(copy.begin(), copy.end(), [](const TMove& a, const TMove& b) {
            return std::tie(a.from, a.to, a.promotion) < std::tie(b.from, b.to, b.promotion);
        });
        return copy;
    };
    const std::vector<TMove> all(generated.moves, generated.moves + generated.count);
    for (const bool checksFirst : {true, false}) {
        SCOPED_TRACE(checksFirst);
        TMoveList list = generated;
        OrderBlackMoves(board, list, killers, checksFirst);
        const std::vector<TMove> ordered(list.moves, list.moves + list.count);
        EXPECT_EQ(sorted(ordered), sorted(all));
        const size_t nChecks = static_cast<size_t>(
            std::count_if(all.begin(), all.end(), [&](const TMove& m) { return GivesCheck(board, m); }));
        ASSERT_GE(nChecks, 3u);  // Qg5, Qb6 and Rh1 among them
        const size_t killerAt = checksFirst ? nChecks : 0;
        EXPECT_EQ(ordered[killerAt], *killer);
        if (!checksFirst) continue;
        for (size_t i = 0; i < nChecks; ++i) EXPECT_TRUE(GivesCheck(board, ordered[i])) << i;
        EXPECT_NE(board.squares[ordered[killerAt + 1].to], kEmpty);  // Qd8:d5
    }
}

// The history lifts a move that settled nodes elsewhere above the quiet moves alike (the same
// distance to the Black king), and more for deeper and more frequent successes; it never lifts a
// quiet move above a check.
TEST(OrderWhiteMoves, HistoryLiftsAMoveAboveItsEqualsOnly) {
    const TChessboard board = test::Board("7k/8/8/8/8/8/8/R3K3 w - - 0 1");
    const auto move = [](int fromFile, int fromRank, int toFile, int toRank) {
        return TMove{static_cast<Square>(MakeSquare(fromFile, fromRank)),
                     static_cast<Square>(MakeSquare(toFile, toRank)), 0};
    };
    const TMove check = move(0, 0, 0, 7), b1 = move(0, 0, 1, 0), a2 = move(0, 0, 0, 1), a3 = move(0, 0, 0, 2);
    CMoveHistory history;
    EXPECT_EQ(history.Points(b1), 0);
    history.Remember(b1, 3);
    const int once = history.Points(b1);
    history.Remember(b1, 5);
    EXPECT_GT(history.Points(b1), once);
    EXPECT_EQ(history.Points(a2), 0);
    TMoveList list;
    GenerateLegalMoves(board, list);
    OrderWhiteMoves(board, list, TKillerMoves{}, false, false, nullptr, &history);
    const auto at = [&](const TMove& m) {
        return std::find(list.moves, list.moves + list.count, m) - list.moves;
    };
    ASSERT_LT(at(a3), list.count);
    EXPECT_EQ(at(check), 0);
    EXPECT_LT(at(b1), at(a2));
    EXPECT_LT(at(b1), at(a3));
}

}  // namespace
}  // namespace moremate
