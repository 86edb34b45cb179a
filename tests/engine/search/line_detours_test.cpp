#include "engine/search/line_detours.h"

#include <gtest/gtest.h>

#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;

constexpr TMove kRa1b1{0, 1}, kRb1c1{1, 2}, kRc1b1{2, 1}, kRb1a1{1, 0}, kRb1b8{1, 57}, kRa1a8{0, 56};
constexpr TMove kKh8g8{63, 62}, kKg8h8{62, 63};

// The rook goes to c1 and back while the king steps aside and back: the line loses the round trip.
// A line that only comes back to the first position keeps its key.
TEST(LineDetours, ComingBackToAPositionLosesTheMovesBetween) {
    const TChessboard root = Board("7k/8/6K1/8/8/8/8/R7 w - -");
    const std::vector<TMove> detour{kRa1b1, kKh8g8, kRb1c1, kKg8h8, kRc1b1, kKh8g8, kRb1b8};
    EXPECT_EQ(WithoutDetours(root, detour), (std::vector<TMove>{kRa1b1, kKh8g8, kRb1b8}));
    const std::vector<TMove> throughTheRoot{kRa1b1, kKh8g8, kRb1a1, kKg8h8, kRa1a8};
    EXPECT_EQ(WithoutDetours(root, throughTheRoot), throughTheRoot);
}

}  // namespace
}  // namespace moremate
