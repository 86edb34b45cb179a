#include "precalc/types/combination_index.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace moremate {
namespace {

struct TMappingCase {
    bool pawns;
    int k;
    uint64_t count;
};

constexpr TMappingCase kMappings[] = {{false, 2, 2016},    {false, 3, 41664}, {false, 4, 635376},
                                      {false, 5, 7624512}, {true, 2, 1128},   {true, 3, 17296},
                                      {true, 4, 194580},   {true, 5, 1712304}};

TEST(CombinationMapping, RankAndSetAreInverseForEveryRankOfEveryMapping) {
    for (const TMappingCase& c : kMappings) {
        const CMappingCombinationIndexIntoSetBase& mapping = CombinationMapping(c.pawns, c.k);
        ASSERT_EQ(mapping.Count(), c.count) << c.k << (c.pawns ? " pawns" : " pieces");
        unsigned char previous[5] = {}, set[5];
        const int first = c.pawns ? 8 : 0, last = c.pawns ? 55 : 63;
        for (uint64_t rank = 0; rank < mapping.Count(); ++rank) {
            mapping.SetAtIndex(rank, set);
            ASSERT_EQ(mapping.IndexOfSet(set), rank) << c.k << (c.pawns ? " pawns" : " pieces");
            ASSERT_TRUE(std::is_sorted(set, set + c.k) && std::adjacent_find(set, set + c.k) == set + c.k);
            ASSERT_TRUE(set[0] >= first && set[c.k - 1] <= last);
            ASSERT_TRUE(rank == 0 || std::lexicographical_compare(previous, previous + c.k, set, set + c.k));
            std::copy(set, set + c.k, previous);
        }
    }
}

TEST(CombinationMapping, FirstAndLastPairsAndNothingBeyond) {
    struct {
        bool pawns;
        unsigned char a, b;
        uint64_t rank;
    } const cases[] = {{false, 0, 1, 0},     {false, 62, 63, 2015}, {true, 8, 9, 0},
                       {true, 54, 55, 1127}, {false, 0, 63, 62},    {false, 1, 2, 63}};
    for (const auto& c : cases) {
        const unsigned char set[2] = {c.a, c.b};
        EXPECT_EQ(CombinationMapping(c.pawns, 2).IndexOfSet(set), c.rank) << int(c.a) << "," << int(c.b);
    }
    // No mapping for a single piece, no pair beyond the last.
    EXPECT_THROW(CombinationMapping(false, 1), std::invalid_argument);
    unsigned char set[2];
    EXPECT_THROW(CombinationMapping(false, 2).SetAtIndex(2016, set), std::out_of_range);
}

}  // namespace
}  // namespace moremate
