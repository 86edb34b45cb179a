#include "core/fen.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/movegen.h"
#include "test_board.h"
#include "test_errors.h"
#include "test_line.h"

namespace moremate {
namespace {

using test::Board;
using test::ErrorOf;
using test::kNoError;
using test::Problem;
using test::TestLine;

const char* const kStart = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

struct ReadCase {
    const char* why;
    const char* text;
    std::string outcome;  // "read", "not a FEN", or the exception's text
};

std::string ReadOutcome(const std::string& text) {
    TChessboard board;
    bool read = false;
    const std::string error = ErrorOf([&] { read = ReadFen(text, board); });
    if (error != kNoError) return error;
    return read ? "read" : "not a FEN";
}

TEST(ReadFen, AcceptsPlacementsOfEightRanksOfEightSquares) {
    const ReadCase cases[] = {
        {"placement only", "4k3/8/8/8/8/8/8/4K3", "read"},
        {"full FEN", kStart, "read"},
        {"adjacent digits", "4k3/8/8/8/8/8/8/4K12", "read"},
        {"a rank skipping nine squares", "4k3/9/8/8/8/8/8/4K3", "not a FEN"},
        {"a rank of nine pawns", "4k3/ppppppppp/8/8/8/8/8/4K3", "not a FEN"},
        {"a rank of nine squares by digits", "4k3/p8/8/8/8/8/8/4K3", "not a FEN"},
        {"zero in a rank", "4k3/08/8/8/8/8/8/4K3", "not a FEN"},
        {"a rank of seven squares", "4k3/7/8/8/8/8/8/4K3", "not a FEN"},
        {"a last rank of seven squares", "4k3/8/8/8/8/8/8/4K2", "not a FEN"},
        {"seven ranks", "4k3/8/8/8/8/8/4K3", "not a FEN"},
        {"nine ranks", "4k3/8/8/8/8/8/8/8/4K3", "not a FEN"},
        {"a trailing slash", "4k3/8/8/8/8/8/8/4K3/", "not a FEN"},
        {"a brace anywhere", "4k3/8/8/8/8/8/8/4K3 w - - 0 1 {comment}", "not a FEN"},
        {"no slash", "4k3", "not a FEN"},
        {"empty text", "", "not a FEN"},
        {"a sign that is no piece", "4k3/8/8/8/8/8/8/4K2*", "not a FEN"},
        {"a letter that is no piece", "4k3/8/8/8/8/8/8/4K2x", "Unknown figure letter: x"},
        {"no kings", "8/8/8/8/8/8/8/8", "Illegal number of kings."},
    };
    for (const ReadCase& c : cases) EXPECT_EQ(ReadOutcome(c.text), c.outcome) << c.why;
}

TEST(ReadFen, FailedReadingLeavesTheBoardAlone) {
    TChessboard board = Board("4k3/8/8/8/8/8/8/4K3");
    const TChessboard before = board;
    EXPECT_FALSE(ReadFen("rnbqkbnr/ppppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", board));
    EXPECT_EQ(0, std::memcmp(board.squares, before.squares, 64));
}

struct WarningCase {
    const char* why;
    const char* fen;
    bool castling;
    bool enPassant;
};

TEST(ReadFen, WarnsAboutFieldsItDoesNotHonour) {
    const WarningCase cases[] = {
        {"placement only grants every castling", "r3k2r/8/8/8/8/8/8/R3K2R", false, false},
        {"all rights given", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", false, false},
        {"no right given for Ke1 and Rh1", "4k3/8/8/8/8/8/8/4K2R w - - 0 1", true, false},
        {"the right that exists is given", "4k3/8/8/8/8/8/8/4K2R w K - 0 1", false, false},
        {"rights the position lacks may be given", "4k3/8/8/8/8/8/8/4K2R w KQkq - 0 1", false, false},
        {"Black's queenside withheld", "r3k3/8/8/8/8/8/8/4K2R w K - 0 1", true, false},
        {"no castling possible", "4k3/8/8/8/8/8/8/4K1R1 w - - 0 1", false, false},
        {"a side field but no castling field", "4k3/8/8/8/8/8/8/4K2R w", true, false},
        {"en passant square given", "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", false, true},
        {"en passant field empty", "4k3/8/8/3pP3/8/8/8/4K3 w - - 0 1", false, false},
    };
    for (const WarningCase& c : cases) {
        TChessboard board;
        TFenWarnings warnings;
        ASSERT_TRUE(ReadFen(c.fen, board, &warnings)) << c.why;
        EXPECT_EQ(warnings.castling, c.castling) << c.why;
        EXPECT_EQ(warnings.enPassant, c.enPassant) << c.why;
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

TEST(WriteFen, RoundTrips) {
    const char* const fens[] = {
        kStart,
        "4k3/8/8/8/8/8/8/R3K3 w Q - 0 1",
        "4k3/8/8/8/8/8/8/4K2R w K - 0 1",
        "r3k2r/8/8/8/8/8/8/4K3 b kq - 0 1",
        "r3k2r/pppq1ppp/2n2n2/3p4/1b1P4/2N1PN2/PPPB1PPP/R2QKB1R w KQkq - 0 1",
        "7k/8/8/8/8/8/8/K7 b - - 0 1",
        "1n2k1n1/8/8/8/8/8/8/R3K1R1 w Q - 0 1",
    };
    for (const char* fen : fens) {
        const TChessboard b = Board(fen);
        EXPECT_EQ(WriteFen(b), fen);
        const std::string placement = std::string(fen).substr(0, std::string(fen).find(' '));
        EXPECT_EQ(WriteFenPlacement(b), placement);
    }
}

TEST(WriteFen, CastlingComesFromThePositionNotTheFen) {
    EXPECT_EQ(WriteFen(Board("4k3/8/8/8/8/8/8/4K2R w - - 0 1")), "4k3/8/8/8/8/8/8/4K2R w K - 0 1");
    EXPECT_EQ(WriteFen(Board("4k3/8/8/8/8/8/8/R3K2R w k - 0 1")), "4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1");
}

struct LineCase {
    const char* why;
    const char* fen;
    int halfMoves;
    const char* moves;  // separated by blanks
    const char* written;
};

TEST(WriteFen, AfterMovesOfALine) {
    const LineCase cases[] = {
        {"a White double step is not written with Black to move", kStart, 1, "e2-e4",
         "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq - 0 1"},
        {"nor a Black double step with White to move", kStart, 3, "e2-e4 e7-e5",
         "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - 0 2"},
        {"the move number counts full moves", kStart, 7, "e2-e4 e7-e5 Ng1-f3 Nb8-c6 Bf1-c4",
         "r1bqkbnr/pppp1ppp/2n5/4p3/2B1P3/5N2/PPPP1PPP/RNBQK2R b KQkq - 0 3"},
        {"castling ends both rights of that side", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", 3, "0-0",
         "r3k2r/8/8/8/8/8/8/R4RK1 b kq - 0 1"},
        {"a rook that leaves and returns loses its right", "4k3/8/8/8/8/8/8/4K2R w K - 0 1", 5,
         "Rh1-h2 Ke8-d8 Rh2-h1", "3k4/8/8/8/8/8/8/4K2R b - - 0 2"},
        {"a king that leaves and returns loses both rights", "r3k2r/8/8/8/8/8/8/4K3 b kq - 0 1", 4,
         "Ke8-d8 Ke1-d1 Kd8-e8", "r3k2r/8/8/8/8/8/8/3K4 w - - 0 2"},
        {"capturing a rook on its square ends that right", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", 3,
         "Ra1:a8", "R3k2r/8/8/8/8/8/8/4K2R b Kk - 0 1"},
    };
    for (const LineCase& c : cases) {
        TestLine line(Problem(c.fen, c.halfMoves));
        EXPECT_EQ(WriteFen(line.PlayLine(c.moves).Now()), c.written) << c.why;
    }
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
