#include "core/transform.h"

#include <gtest/gtest.h>

#include <string>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/movegen.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;
using test::Problem;
using test::TestLine;

TEST(Rotate90, TurnsTheBoardAQuarterClockwiseAndFourTurnsRestoreIt) {
    // a1 -> a8, a8 -> h8, h8 -> h1, h1 -> a1, d2 -> b5.
    TChessboard b = Board("N6k/8/8/8/8/8/3B4/K6n w - -");
    std::string description;
    EXPECT_EQ(Rotate90(b, description), std::nullopt);
    EXPECT_EQ(WriteFenPlacement(b), "K6N/8/8/1B6/8/8/8/n6k");
    EXPECT_EQ(b.WhiteKingSquare(), MakeSquare(0, 7));
    const char* const start = "r3k2r/1q6/8/3Pp3/8/5N2/4B3/R3K2R";
    b = Board(start);
    description = "J. Smith, 1st Prize";
    for (int turn = 0; turn < 4; ++turn) Rotate90(b, description);
    EXPECT_EQ(description, "J. Smith, 1st Prize");
    EXPECT_EQ(WriteFenPlacement(b), start);
}

TEST(Rotate90, DescriptionPrefix) {
    // Only a leading "Rotated <digits>°: " counts as an earlier turn.
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"", "Rotated 90°: "}, {"Rotated 180°: a: b", "Rotated 270°: a: b"}, {"Rotated 270°: a: b", "a: b"},
        {"Rotated 360°: a", "Rotated 450°: a"}, {"Rotated 0°: a", "Rotated 90°: a"}, {"Rotated 270°", ""},
        {"Rotated 45°: a", "Rotated 90°: Rotated 45°: a"}, {"Rotated 90: a", "Rotated 90°: Rotated 90: a"},
        {"Rotated x90°: a", "Rotated 90°: Rotated x90°: a"}, {"rotated 90°: a", "Rotated 90°: rotated 90°: a"},
        {"B&Wh.swapped: Rotated 90°: a", "Rotated 90°: B&Wh.swapped: Rotated 90°: a"},
    };
    // clang-format on
    for (const auto& [before, after] : cases) {
        TChessboard b = Board("4k3/8/8/8/8/8/8/4K3");
        std::string description = before;
        Rotate90(b, description);
        EXPECT_EQ(description, after) << before;
    }
}

TEST(Transforms, BrokenRuleIsReportedAndTheTransformKept) {
    TChessboard b = Board("4k3/8/8/8/8/8/P7/4K3 w - -");  // the pawn on a2 lands on b8
    std::string description = "x";
    EXPECT_EQ(Rotate90(b, description), "Pawns cannot occupy 1st nor 8th line of the chessboard.");
    EXPECT_EQ(b.squares[MakeSquare(1, 7)], kWhite | kPawn);
    EXPECT_EQ(description, "Rotated 90°: x");
    TChessboard lone;
    lone.squares[MakeSquare(4, 0)] = kWhite | kKing;
    description.clear();
    EXPECT_EQ(SwapColours(lone, description), "Illegal number of kings.");
    EXPECT_EQ(lone.squares[MakeSquare(4, 7)], kBlack | kKing);
    EXPECT_EQ(description, "B&Wh.swapped: ");
}

TEST(SwapColours, MirrorsRanksAndExchangesColoursTwiceRestores) {
    TChessboard b = Board("4k3/8/8/8/8/2n5/4P3/R3K3 w Q -");
    std::string description = "x";
    EXPECT_EQ(SwapColours(b, description), std::nullopt);
    EXPECT_EQ(WriteFenPlacement(b), "r3k3/4p3/2N5/8/8/8/8/4K3");
    EXPECT_EQ(description, "B&Wh.swapped: x");
    EXPECT_EQ(b.whiteKnights + 2 * b.blackKnights + 4 * b.blackRooks + 8 * b.blackPawns, 1 + 4 + 8);
    SwapColours(b, description);
    EXPECT_EQ(WriteFenPlacement(b), "4k3/8/8/8/8/2n5/4P3/R3K3");
    EXPECT_EQ(description, "B&Wh.swapped: B&Wh.swapped: x");
}

TEST(Transforms, StartANewLine) {
    using Transform = std::optional<std::string> (*)(TChessboard&, std::string&);
    for (Transform transform : {Transform{&SwapColours}, Transform{&Rotate90}}) {
        // A line in which castling rights were lost and a double step was just played.
        TestLine line(Problem("r3k2r/3p4/8/8/8/8/8/R3K2R w KQkq - 0 1", 5));
        TChessboard b = line.Play("Ke1-d1").Play("Ra8-b8").Play("Kd1-e1").Play("d7-d5").Now();
        ASSERT_NE(b.epSquare, kNoSquare);
        b.auxWords[0] = 9;
        std::string description;
        transform(b, description);
        EXPECT_EQ(b.previous, nullptr);
        EXPECT_TRUE(b.lastMove.IsNull());
        EXPECT_EQ(b.epSquare, kNoSquare);
        EXPECT_EQ(b.castling, HomeCastlingRights(b.squares));
        EXPECT_EQ(b.auxWords[0], 0u);
    }
    // Kings and rooks set up afresh on their squares castle again.
    TestLine line(Problem("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", 5));
    TChessboard b = line.Play("Ke1-d1").Play("Ke8-d8").Play("Kd1-e1").Play("Kd8-e8").Now();
    EXPECT_EQ(CastlingRights(b), 0);
    std::string description;
    SwapColours(b, description);
    EXPECT_EQ(CastlingRights(b), kWhiteKingside | kWhiteQueenside | kBlackKingside | kBlackQueenside);
}

TEST(Shift, MovesEveryPieceOrRefusesWhenOneWouldLeaveTheBoard) {
    struct Case {
        const char* start;
        int files, ranks;
        const char* after;  // nullptr: refused, the board kept
        bool fault;         // the shifted position breaks a rule
    };
    const char* const corner = "4k3/8/8/8/8/8/1P6/R3K3";
    for (const Case& c :
         {Case{corner, 1, 0, "5k2/8/8/8/8/8/2P5/1R3K2", false}, Case{corner, -1, 0, nullptr, false},
          Case{corner, 0, 1, nullptr, false}, Case{corner, 0, -1, nullptr, false},
          Case{corner, 3, 0, "7k/8/8/8/8/8/4P3/3R3K", false}, Case{corner, 4, 0, nullptr, false},
          Case{"8/4k3/1P6/8/8/8/8/4K3", 0, 1, "4k3/1P6/8/8/8/8/4K3/8", false},
          Case{"8/4k3/1P6/8/8/8/8/4K3", 0, 2, nullptr, false},
          Case{"4k3/1P6/8/8/8/8/4K3/8", 0, -1, "8/4k3/1P6/8/8/8/8/4K3", false},
          Case{"8/4k3/8/8/8/4K3/1P6/8", 0, -1, "8/8/4k3/8/8/8/4K3/1P6", true}}) {
        TChessboard b = Board(c.start);
        if (!c.after) {
            EXPECT_THROW(Shift(b, c.files, c.ranks), ChessException) << c.start << c.files << c.ranks;
            EXPECT_EQ(WriteFenPlacement(b), c.start);
            continue;
        }
        const std::optional<std::string> fault = Shift(b, c.files, c.ranks);
        EXPECT_EQ(WriteFenPlacement(b), c.after);
        EXPECT_EQ(fault.has_value(), c.fault) << c.after;
    }
}

}  // namespace
}  // namespace moremate
