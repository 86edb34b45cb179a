#include "core/chessboard_id.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;
using test::ErrorOf;
using test::kNoError;

std::string DecodeError(const TChessboardId& id) {
    uint8_t squares[64];
    return ErrorOf([&] { DecodeId(id, squares); });
}

// Identifiers and their six-bit texts, worked out by hand from the bit layout.
TEST(ChessboardId, KnownPositionsGiveTheirBitCountsAndTexts) {
    // clang-format off
    const struct { const char* placement; int bitCount; const char* alphanum6; } cases[] = {
        {"8/8/8/8/8/8/8/8", 64, "00000000000"}, {"7k/8/8/8/8/8/8/K7", 72, "100000000006"},
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", 192, "Jqc5yRmFkaBiF00000MVseDPVYKPRouv"},
        {"r3k2r/1q6/8/3Pp3/8/5N2/4B3/R3K2R", 108, "d4E1h0G00a70w5M33u"},
    };
    // clang-format on
    for (const auto& c : cases) {
        // The empty board cannot be read as a position: place its squares directly.
        TChessboard board;
        if (std::string(c.placement) != "8/8/8/8/8/8/8/8") board = Board(c.placement);
        const TChessboardId id = EncodeId(board.squares);
        EXPECT_EQ(id.bitCount, c.bitCount) << c.placement;
        EXPECT_EQ(ToAlphanum6(id), c.alphanum6) << c.placement;
        uint8_t decoded[64];
        std::memset(decoded, 0xEE, sizeof decoded);
        DecodeId(id, decoded);
        EXPECT_EQ(0, std::memcmp(decoded, board.squares, 64)) << c.placement;
    }
}

TEST(ChessboardId, EncodingZeroesTheUnusedBits) {
    const TChessboardId id = EncodeId(Board("7k/8/8/8/8/8/8/K7").squares);
    // a1: 1 then short code 0; h8 (bits 67..71): 1 then short code 1.
    EXPECT_EQ(id.bits[0], 0x01);
    EXPECT_EQ(id.bits[8], 0x18);
    for (int i = 9; i < 40; ++i) EXPECT_EQ(id.bits[i], 0) << i;
}

TEST(ChessboardId, UnknownPieceCodeIsRejected) {
    for (uint8_t code : {uint8_t{0x43}, uint8_t{kKing}, uint8_t{0xC1}, uint8_t{0x40}, uint8_t{0x5C}}) {
        uint8_t squares[64] = {};
        squares[17] = code;
        EXPECT_EQ(ErrorOf([&] { EncodeId(squares); }), "Unknown figure code") << int{code};
    }
}

TEST(ChessboardId, DecodeRejectsBrokenIds) {
    const TChessboardId empty = EncodeId(Board("7k/8/8/8/8/8/8/K7").squares);
    const std::string wrong = "Wrong chessboard id", shortCode = "Unknown figure short code";
    // A count that ends inside the last square still reads it; short codes 12 to 15 name no piece.
    // clang-format off
    const struct Case { int16_t bitCount; int shortCode; std::string error; } cases[] = {
        {0, -1, wrong}, {0, 15, wrong}, {-5, -1, wrong}, {5, -1, wrong}, {67, -1, wrong}, {68, -1, kNoError},
        {72, 12, shortCode}, {72, 15, shortCode}, {72, -1, kNoError}, {72, 11, kNoError},
    };
    // clang-format on
    for (const Case& c : cases) {
        TChessboardId id = empty;
        id.bitCount = c.bitCount;
        if (c.shortCode >= 0) id.bits[0] = static_cast<uint8_t>(1 | c.shortCode << 1);
        EXPECT_EQ(DecodeError(id), c.error) << c.bitCount << " " << c.shortCode;
    }
}

TEST(ChessboardId, DecodeStopsAtSixtyFourSquares) {
    TChessboardId id = EncodeId(Board("4k3/8/8/8/8/8/8/4K3").squares);
    id.bitCount = 320;  // a longer count does not read past the board
    uint8_t squares[64];
    DecodeId(id, squares);
    EXPECT_EQ(squares[4], kWhite | kKing);
    EXPECT_EQ(squares[60], kBlack | kKing);
}

TEST(Alphanum, SixBitGroupsUseTheWholeAlphabetAndCrossBytes) {
    const std::pair<uint8_t, char> cases[] = {{0, '0'},  {9, '9'},  {10, 'a'}, {35, 'z'},
                                              {36, 'A'}, {61, 'Z'}, {62, '('}, {63, ')'}};
    for (const auto& [value, letter] : cases) {
        TChessboardId id;
        id.bitCount = 6;
        id.bits[0] = value;
        EXPECT_EQ(ToAlphanum6(id), std::string(1, letter)) << int{value};
    }
    TChessboardId id;
    id.bitCount = 13;          // three groups, the last one of a single bit
    id.bits[0] = 0b1100'0001;  // group 0 = 1, group 1 starts with bits 6 and 7
    id.bits[1] = 0b0001'0011;  // group 1 = 1 + 2 + 4 + 8 = 15 -> "f", bit 12 -> group 2 = 1
    EXPECT_EQ(ToAlphanum6(id), "1f1");
}

TEST(Alphanum, FiveBitGroups) {
    struct Case {
        std::vector<uint8_t> bytes;
        int bitCount;
        const char* text;
    };
    // With 8 bits of 0xFF 0xFF the second group is bits 5..7 and two zeros, not bits 8 and 9.
    const Case cases[] = {
        {{0x00}, 5, "0"},         {{0x09}, 5, "9"},        {{0x0A}, 5, "a"}, {{0x1F}, 5, "v"},
        {{0xFF, 0x03}, 10, "vv"}, {{0xFF, 0xFF}, 8, "v7"}, {{0xFF}, 0, ""},  {{0x21, 0x04}, 11, "111"},
    };
    for (const Case& c : cases) EXPECT_EQ(ToAlphanum5(c.bytes.data(), c.bitCount), c.text) << c.bitCount;
}

}  // namespace
}  // namespace moremate
