#include "engine/heuristics/heuristic_names.h"

#include <gtest/gtest.h>

namespace moremate {
namespace {

TEST(HeuristicNames, EveryNameLeadsBackToItsBit) {
    for (uint32_t mask : {0u, 0x100u, 0x10000000u, 0x20000000u, 0x3u, 0xffffffffu})
        EXPECT_EQ(HeuristicName(mask), "...");
    int named = 0;
    for (int bit = 0; bit < kHeuristicBitCount; ++bit) {
        const uint32_t mask = uint32_t{1} << bit;
        if (HeuristicName(mask) == "...") continue;
        ++named;
        EXPECT_EQ(HeuristicFromName(HeuristicName(mask)), mask) << bit;
    }
    EXPECT_EQ(named, 29);
    EXPECT_EQ(HeuristicFromName("sh_keepKingOnTheEdge"), SH_KEEPKINGONTHEEDGE);
    EXPECT_EQ(HeuristicFromName("SH_KEEPKINGONTHEEDG"), 0u);
    EXPECT_EQ(HeuristicFromName("..."), 0u);
    EXPECT_EQ(HeuristicFromName(""), 0u);
}

}  // namespace
}  // namespace moremate
