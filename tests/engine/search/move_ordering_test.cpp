#include "engine/search/move_ordering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

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

}  // namespace
}  // namespace moremate
