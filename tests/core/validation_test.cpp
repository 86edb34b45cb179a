#include "core/validation.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <map>
#include <random>
#include <string>

#include "core/chessboard.h"

namespace moremate {
namespace {

// Random placements of piece bytes, undamaged and damaged: zero to two kings of each side, pawns
// on any rank, sliders close enough to give checks, and bytes no piece has (a type without a
// colour, both colours, unknown type bits).
std::array<uint8_t, 64> RandomSquares(std::mt19937_64& random) {
    static constexpr uint8_t kPieces[] = {kPawn, kKnight, kBishop, kRook, kQueen};
    static constexpr uint8_t kDamaged[] = {kPawn, kWhite, kWhite | kBlack | kKing, kBlack | 0x20, 0xFF, 0x1F};
    std::array<uint8_t, 64> squares{};
    auto place = [&](uint8_t piece) { squares[random() % 64] = piece; };
    for (uint8_t colour : {kWhite, kBlack}) {
        const unsigned nKings = random() % 8 == 0 ? random() % 3 : 1;
        for (unsigned i = 0; i < nKings; ++i) place(colour | kKing);
        for (unsigned i = random() % 6; i > 0; --i) place(colour | kPieces[random() % std::size(kPieces)]);
    }
    if (random() % 8 == 0) place(kDamaged[random() % std::size(kDamaged)]);
    return squares;
}

TEST(BrokenRuleOf, GivesTheVerdictOfTheFullValidationForPlacementsGoodAndDamaged) {
    std::mt19937_64 random(17);
    std::map<std::string, int> verdicts;
    for (int i = 0; i < 200'000; ++i) {
        const std::array<uint8_t, 64> squares = RandomSquares(random);
        TChessboard board;
        std::memcpy(board.squares, squares.data(), squares.size());
        const char* expected = BrokenRule(board);
        const char* verdict = BrokenRuleOf(squares.data());
        ASSERT_STREQ(verdict ? verdict : "valid", expected ? expected : "valid") << i;
        ++verdicts[expected ? expected : "valid"];
    }
    // Every rule was broken often enough for the comparison to mean something.
    ASSERT_EQ(verdicts.size(), 4u);
    for (const auto& [verdict, nCount] : verdicts) EXPECT_GT(nCount, 1'000) << verdict;
}

}  // namespace
}  // namespace moremate
