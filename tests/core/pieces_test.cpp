#include "core/pieces.h"

#include <gtest/gtest.h>

#include <string>

#include "test_errors.h"

namespace moremate {
namespace {

using test::ErrorOf;
using test::kNoError;

TEST(Pieces, LettersReadInFenAndInMoveTexts) {
    const struct {
        char letter;
        uint8_t type;       // 0: unknown
        bool moveTextOnly;  // a German letter, read in move texts only
    } cases[] = {
        {'K', kKing, false},   {'k', kKing, false},   {'Q', kQueen, false},  {'h', kQueen, false},
        {'H', kQueen, false},  {'R', kRook, false},   {'w', kRook, false},   {'B', kBishop, false},
        {'G', kBishop, false}, {'N', kKnight, false}, {'s', kKnight, false}, {'P', kPawn, false},
        {'D', kQueen, true},   {'T', kRook, true},    {'L', kBishop, true},  {'X', 0, false},
        {'O', 0, false},
    };
    for (const auto& c : cases) {
        for (bool moveText : {false, true}) {
            uint8_t type = 0;
            const std::string error = ErrorOf([&] { type = TypeFromLetter(c.letter, moveText); });
            const bool known = c.type != 0 && (moveText || !c.moveTextOnly);
            EXPECT_EQ(error, known ? kNoError : std::string("Unknown figure letter: ") + c.letter)
                << c.letter;
            if (known) {
                EXPECT_EQ(type, c.type) << c.letter;
            }
        }
    }
}

TEST(Pieces, ColumnsRoundTrip) {
    const uint8_t types[] = {kKing, kQueen, kRook, kBishop, kKnight, kPawn};
    for (int column = 0; column < 6; ++column) {
        EXPECT_EQ(ColumnToPiece(column), types[column]);
        EXPECT_EQ(PieceToColumn(types[column]), column);
    }
    EXPECT_EQ(ColumnToPiece(6), kPawn);
    EXPECT_EQ(PieceToColumn(kEmpty), -1);
    for (int column : {-1, 7})
        EXPECT_EQ(ErrorOf([&] { ColumnToPiece(column); }), "Cannot convert column to piece.");
    for (uint8_t type : {uint8_t{3}, uint8_t{kWhite | kKing}})
        EXPECT_EQ(ErrorOf([&] { PieceToColumn(type); }), "Unknown figure code passed to PieceToColumn.");
}

}  // namespace
}  // namespace moremate
