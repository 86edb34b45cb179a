#include "core/fen.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/movegen.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;
using test::ErrorOf;
using test::kNoError;
using test::Problem;
using test::TestLine;

const char* const kStart = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

std::string ReadOutcome(const std::string& text) {
    TChessboard board;
    bool read = false;
    const std::string error = ErrorOf([&] { read = ReadFen(text, board); });
    if (error != kNoError) return error;
    return read ? "read" : "not a FEN";
}

TEST(ReadFen, AcceptsPlacementsOfEightRanksOfEightSquares) {
    // clang-format off
    const std::pair<const char*, std::string> cases[] = {
        {"4k3/8/8/8/8/8/8/4K3", "read"}, {kStart, "read"}, {"4k3/8/8/8/8/8/8/4K12", "read"},
        {"4k3/9/8/8/8/8/8/4K3", "not a FEN"}, {"4k3/ppppppppp/8/8/8/8/8/4K3", "not a FEN"},
        {"4k3/p8/8/8/8/8/8/4K3", "not a FEN"}, {"4k3/08/8/8/8/8/8/4K3", "not a FEN"},
        {"4k3/8/8/8/8/8/8/4K2", "not a FEN"}, {"4k3/8/8/8/8/8/4K3", "not a FEN"},
        {"4k3/8/8/8/8/8/8/8/4K3", "not a FEN"}, {"4k3/8/8/8/8/8/8/4K3/", "not a FEN"},
        {"4k3/8/8/8/8/8/8/4K3 w - - 0 1 {comment}", "not a FEN"}, {"", "not a FEN"},
        {"4k3/8/8/8/8/8/8/4K2*", "not a FEN"}, {"4k3/8/8/8/8/8/8/4K2x", "Unknown figure letter: x"},
        {"8/8/8/8/8/8/8/8", "Illegal number of kings."},
    };
    // clang-format on
    for (const auto& [text, outcome] : cases) EXPECT_EQ(ReadOutcome(text), outcome) << text;
    // A failed reading leaves the board alone.
    TChessboard board = Board("4k3/8/8/8/8/8/8/4K3");
    const TChessboard before = board;
    EXPECT_FALSE(ReadFen("rnbqkbnr/ppppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", board));
    EXPECT_EQ(0, std::memcmp(board.squares, before.squares, 64));
}

TEST(ReadFen, WarnsAboutFieldsItDoesNotHonour) {
    // Castling rights the position has but the FEN withholds, and any en passant square.
    // clang-format off
    const struct { const char* fen; bool castling, enPassant; } cases[] = {
        {"r3k2r/8/8/8/8/8/8/R3K2R", false, false},            {"4k3/8/8/8/8/8/8/4K2R w - - 0 1", true, false},
        {"4k3/8/8/8/8/8/8/4K2R w K - 0 1", false, false},     {"4k3/8/8/8/8/8/8/4K2R w KQkq - 0 1", false, false},
        {"r3k3/8/8/8/8/8/8/4K2R w K - 0 1", true, false},     {"4k3/8/8/8/8/8/8/4K1R1 w - - 0 1", false, false},
        {"4k3/8/8/8/8/8/8/4K2R w", true, false},              {"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", false, true},
    };
    // clang-format on
    for (const auto& c : cases) {
        TChessboard board;
        TFenWarnings warnings;
        ASSERT_TRUE(ReadFen(c.fen, board, &warnings)) << c.fen;
        EXPECT_EQ(warnings.castling, c.castling) << c.fen;
        EXPECT_EQ(warnings.enPassant, c.enPassant) << c.fen;
    }
}

TEST(ReadFen, FieldsDoNotChangeTheRules) {
    // Castling withheld by the FEN is still played.
    const TChessboard withheld = Board("4k3/8/8/8/8/8/8/4K2R w - - 0 1");
    TChessboard castled;
    MakeMove(withheld, "0-0", castled);
    EXPECT_EQ(castled.squares[MakeSquare(6, 0)], kWhite | kKing);
    // The en passant square of the FEN is not: the first move never takes en passant.
    const TChessboard ep = Board("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1");
    TMoveList legal;
    GenerateLegalMoves(ep, legal);
    EXPECT_FALSE(legal.Contains(TMove{MakeSquare(4, 4), MakeSquare(3, 5), 0}));
    TChessboard child;
    EXPECT_EQ(ErrorOf([&] { MakeMove(ep, "e5:d6", child); }), "Illegal move");
}

TEST(WriteFen, RoundTripsWithCastlingFromThePosition) {
    for (const char* fen : {kStart, "4k3/8/8/8/8/8/8/R3K3 w Q - 0 1", "r3k2r/8/8/8/8/8/8/4K3 b kq - 0 1",
                            "r3k2r/pppq1ppp/2n2n2/3p4/1b1P4/2N1PN2/PPPB1PPP/R2QKB1R w KQkq - 0 1"}) {
        EXPECT_EQ(WriteFen(Board(fen)), fen);
        EXPECT_EQ(WriteFenPlacement(Board(fen)), std::string(fen).substr(0, std::string(fen).find(' ')));
    }
    EXPECT_EQ(WriteFen(Board("4k3/8/8/8/8/8/8/4K2R w - - 0 1")), "4k3/8/8/8/8/8/8/4K2R w K - 0 1");
    EXPECT_EQ(WriteFen(Board("4k3/8/8/8/8/8/8/R3K2R w k - 0 1")), "4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1");
}

TEST(WriteFen, EnPassantSquareIsPairedWithTheSideToMove) {
    // The field is written only when the side to move is the one that made the double step,
    // which a line never gives; turn the side by hand to see the square that would be written.
    TestLine line(Problem(kStart, 3));
    TChessboard afterWhite = line.Play("e2-e4").Now();
    ++afterWhite.movesLeft;
    EXPECT_EQ(WriteFen(afterWhite), "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR w KQkq E3 0 1");

    TChessboard afterBlack = line.Play("d7-d5").Now();
    ++afterBlack.movesLeft;
    EXPECT_EQ(WriteFen(afterBlack), "rnbqkbnr/ppp1pppp/8/3p4/4P3/8/PPPP1PPP/RNBQKBNR b KQkq D6 0 1");
}

}  // namespace
}  // namespace moremate
