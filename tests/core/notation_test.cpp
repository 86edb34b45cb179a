#include "core/notation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/fen.h"
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

TMove M(const char* from, const char* to, uint8_t promotion = 0) {
    return TMove{static_cast<Square>(String2Square(from)), static_cast<Square>(String2Square(to)), promotion};
}

TEST(String2Square, ReadsFileAndRankInEitherCase) {
    const struct {
        const char* text;
        int square;
    } cases[] = {{"a1", 0}, {"h1", 7}, {"a2", 8}, {"a8", 56}, {"h8", 63}, {"e4", 28}, {"E4", 28}, {"H8", 63}};
    for (const auto& c : cases) EXPECT_EQ(String2Square(c.text), c.square) << c.text;
}

TEST(String2Square, RejectsWhatIsNoSquare) {
    for (const char* text : {"i1", "a9", "a0", "I1", "4e", "e", "", "`1", "e44"})
        EXPECT_EQ(ErrorOf([&] { String2Square(text); }), std::string("Error in String2Square() ") + text);
}

TEST(SquareText, RoundTripsEverySquare) {
    for (int sq = 0; sq < 64; ++sq) EXPECT_EQ(String2Square(SquareText(sq)), sq);
    EXPECT_EQ(SquareText(0), "a1");
    EXPECT_EQ(SquareText(63), "h8");
}

TEST(MoveToText, LongNotation) {
    const struct {
        TMove move;
        Piece moving;
        bool captures;
        const char* text;
    } cases[] = {
        {M("e2", "e2"), kEmpty, false, "-"},
        {M("e2", "e4"), kWhite | kPawn, false, "e2-e4"},
        {M("h4", "g4"), kWhite | kRook, false, "Rh4-g4"},
        {M("c5", "c1"), kBlack | kQueen, true, "Qc5:c1"},
        {M("g1", "f3"), kWhite | kKnight, false, "Ng1-f3"},
        {M("f1", "b5"), kWhite | kBishop, false, "Bf1-b5"},
        {M("e1", "f1"), kWhite | kKing, false, "Ke1-f1"},
        {M("e7", "d8", kQueen), kWhite | kPawn, true, "e7:d8Q"},
        {M("c2", "c1", kQueen), kBlack | kPawn, false, "c2-c1Q"},
        {M("b7", "b8", kKnight), kWhite | kPawn, false, "b7-b8N"},
        {M("e1", "g1"), kWhite | kKing, false, "0-0"},
        {M("e1", "c1"), kWhite | kKing, false, "0-0-0"},
        {M("e8", "g8"), kBlack | kKing, false, "0-0"},
        {M("e8", "c8"), kBlack | kKing, false, "0-0-0"},
    };
    for (const auto& c : cases) EXPECT_EQ(MoveToText(c.move, c.moving, c.captures), c.text) << c.text;
}

TEST(MoveToText, ReadsPieceAndCaptureOffTheBoard) {
    TestLine line(Problem("4k3/3p4/8/4P3/8/8/8/R3K3 b - - 0 1", 4));
    const TChessboard& afterDoubleStep = line.Play("d7-d5").Now();
    EXPECT_EQ(MoveToText(afterDoubleStep, M("e5", "d6")), "e5:d6");  // en passant
    EXPECT_EQ(MoveToText(afterDoubleStep, M("e5", "e6")), "e5-e6");
    EXPECT_EQ(MoveToText(afterDoubleStep, M("a1", "a8")), "Ra1-a8");
    EXPECT_EQ(MoveToText(afterDoubleStep, M("e1", "c1")), "0-0-0");
}

struct ParseCase {
    const char* text;
    bool white;
    TMove move;
    std::string error;
};

TEST(ParseFullDescription, MovesAndErrors) {
    const std::string length = "Improper string length";
    const std::string improper = "Improper full description of move";
    const ParseCase cases[] = {
        {"e2-e4", true, M("e2", "e4"), kNoError},
        {"  e2-e4  ", true, M("e2", "e4"), kNoError},
        {"E2-E4", true, M("e2", "e4"), kNoError},
        {"Rh4-g4", false, M("h4", "g4"), kNoError},
        {"Xh4-g4", false, M("h4", "g4"), kNoError},  // the piece letter is not examined here
        {"e7:d8Q", true, M("e7", "d8", kQueen), kNoError},
        {"e7-d8Q", true, M("e7", "d8", kQueen), kNoError},
        {"e7xd8Q", true, M("e7", "d8", kQueen), kNoError},
        {"e7/d8Q", true, M("e7", "d8", kQueen), kNoError},
        {"e7-e8q", true, M("e7", "e8", kQueen), kNoError},
        {"e7-e8h", true, M("e7", "e8", kQueen), kNoError},
        {"e7-e8W", true, M("e7", "e8", kRook), kNoError},
        {"e7-e8G", true, M("e7", "e8", kBishop), kNoError},
        {"e7-e8S", true, M("e7", "e8", kKnight), kNoError},
        {"b2-b1N", false, M("b2", "b1", kKnight), kNoError},
        {"0-0", true, M("e1", "g1"), kNoError},
        {"0-0-0", true, M("e1", "c1"), kNoError},
        {"0-0", false, M("e8", "g8"), kNoError},
        {" 0-0-0 ", false, M("e8", "c8"), kNoError},
        {"", true, {}, "Empty string"},
        {"   ", true, {}, length},
        {"e2e4", true, {}, length},
        {"Rh4-g4-", true, {}, length},
        {"Rh4--g4", true, {}, length},
        {"e7-e8X", true, {}, "Unknown figure letter: X"},
        {"2e-e4", true, {}, improper},
        {"e2-44", true, {}, improper},
        {"e2-ee", true, {}, "Unknown figure letter: e"},
        {"e2-e9", true, {}, improper},
        {"i2-e4", true, {}, improper},
        {"e0-e4", true, {}, improper},
    };
    for (const ParseCase& c : cases) {
        TMove move;
        EXPECT_EQ(ErrorOf([&] { move = ParseFullDescription(c.text, c.white); }), c.error) << c.text;
        if (c.error == kNoError) {
            EXPECT_EQ(move, c.move) << c.text;
            EXPECT_EQ(move.PromotedType(), c.move.PromotedType()) << c.text;
        }
    }
}

struct MakeMoveCase {
    const char* why;
    const char* fen;
    const char* moves;    // separated by blanks
    std::string outcome;  // the FEN after the moves, or the message of the failing last move
};

// A long problem, so that every line of the table fits; the side to move is the FEN's.
TChessboard Start(const std::string& fen) {
    return Problem(fen, FenWhiteToMove(fen) ? 9 : 8);
}

std::string Outcome(const MakeMoveCase& c) {
    TestLine line(Start(c.fen));
    const std::string error = ErrorOf([&] { line.PlayLine(c.moves); });
    return error == kNoError ? WriteFen(line.Now()) : error;
}

TEST(MakeMove, RefusesShortOrImproperTexts) {
    const std::string shortNotation = "Short notation not supported.";
    const std::string improper = "Improper move description";
    const MakeMoveCase cases[] = {
        {"piece and square", kStart, "Nf3", shortNotation},
        {"square", kStart, "e4", shortNotation},
        {"piece capture", kStart, "Nxe5", shortNotation},
        {"piece capture with a colon", kStart, "N:e5", shortNotation},
        {"pawn capture", kStart, "exd5", shortNotation},
        {"four characters", kStart, "e2e4", shortNotation},
        {"leading capture mark", kStart, ":e2-e4", improper},
        {"leading x", kStart, "xe2-e4", improper},
        {"no piece on the from-square", kStart, "e3-e4", improper},
        {"another piece on the from-square", kStart, "Bg1-f3", improper},
        {"a pawn text for a piece", kStart, "g1-f3", improper},
        {"a piece of the other side", kStart, "e7-e5", improper},
        {"own piece on the to-square", kStart, "Ra1-a2", improper},
        {"a letter that names no piece", kStart, "Xg1-f3", "Unknown figure letter: X"},
    };
    for (const MakeMoveCase& c : cases) EXPECT_EQ(Outcome(c), c.outcome) << c.why;
}

TEST(MakeMove, RefusesMovesThePieceCannotMake) {
    const std::string illegal = "Illegal move";
    const MakeMoveCase cases[] = {
        {"not a knight's jump", kStart, "Nb1-b3", illegal},
        {"rook blocked by its own pawn", kStart, "Ra1-a3", illegal},
        {"pawn three steps", kStart, "e2-e5", illegal},
        {"pawn diagonal to an empty square", kStart, "e2-d3", illegal},
        {"promotion letter on an ordinary move", kStart, "e2-e4Q", illegal},
        {"double step over a piece", "4k3/8/8/8/8/4n3/4P3/4K3 w", "e2-e4", illegal},
        {"double step off the home rank", "4k3/8/8/8/8/4P3/8/4K3 w", "e3-e5", illegal},
        {"pawn straight onto a piece", "4k3/8/8/4p3/4P3/8/8/4K3 w", "e4-e5", illegal},
        {"pawn backwards", "4k3/8/8/4p3/8/8/8/4K3 b", "e5-e6", illegal},
        {"pinned knight", "4k3/4r3/8/8/8/8/4N3/4K3 w", "Ne2-c3", illegal},
        {"king into check", "4k3/8/8/8/8/8/r7/4K3 w", "Ke1-e2", illegal},
        {"check ignored", "4k3/8/8/8/8/8/8/r3K2R w", "Rh1-h2", illegal},
        {"promotion without a piece", "3r3k/4P3/8/8/8/8/8/4K3 w", "e7-e8", illegal},
        {"promotion to a king", "3r3k/4P3/8/8/8/8/8/4K3 w", "e7-e8K", illegal},
        {"castling written as a king move", "4k3/8/8/8/8/8/8/4K2R w", "Ke1-g1", illegal},
        {"castling through an attacked square", "4kr2/8/8/8/8/8/8/4K2R w", "0-0", illegal},
        {"castling out of check", "4r1k1/8/8/8/8/8/8/4K2R w", "0-0", illegal},
        {"castling without a rook", "4k3/8/8/8/8/8/8/4K3 w", "0-0", illegal},
        {"castling with a piece between", "4k3/8/8/8/8/8/8/RN2K3 w", "O-O-O", illegal},
        {"castling after the rook came back", "4k3/8/8/8/8/8/8/4K2R w", "Rh1-h2 Ke8-d8 Rh2-h1 Kd8-e8 0-0",
         illegal},
        {"en passant only right after the double step", "4k3/3p4/8/4P3/8/8/8/4K3 b",
         "d7-d5 Ke1-d1 Ke8-f7 e5:d6", illegal},
    };
    for (const MakeMoveCase& c : cases) EXPECT_EQ(Outcome(c), c.outcome) << c.why;
}

TEST(MakeMove, PlaysLongNotation) {
    const char* const afterNf3 = "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - 0 1";
    const MakeMoveCase cases[] = {
        {"knight", kStart, "Ng1-f3", afterNf3},
        {"capture mark on an empty square", kStart, "Ng1:f3", afterNf3},
        {"pawn double step", kStart, "e2-e4", "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq - 0 1"},
        {"Black's moves", kStart, "e2-e4 e7-e5 Ng1-f3 Nb8-c6",
         "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 0 3"},
        {"German queen letter", "4k3/8/8/8/8/8/8/3QK3 w", "Dd1-h5", "4k3/8/8/7Q/8/8/8/4K3 b - - 0 1"},
        {"pawn captures with any separator", "4k3/8/8/3p4/4P3/8/8/4K3 w", "e4-d5",
         "4k3/8/8/3P4/8/8/8/4K3 b - - 0 1"},
        {"capture promotion", "3rk3/4P3/8/8/8/8/8/4K3 w", "e7:d8Q", "3Qk3/8/8/8/8/8/8/4K3 b - - 0 1"},
        {"underpromotion", "3r3k/4P3/8/8/8/8/8/4K3 w", "e7-e8N", "3rN2k/8/8/8/8/8/8/4K3 b - - 0 1"},
        {"Black promotes", "4k3/8/8/8/8/8/1p6/4K3 b", "b2-b1Q", "4k3/8/8/8/8/8/8/1q2K3 w - - 0 1"},
        {"en passant right after the double step", "4k3/3p4/8/4P3/8/8/8/4K3 b", "d7-d5 e5:d6",
         "4k3/8/3P4/8/8/8/8/4K3 b - - 0 2"},
        {"short castling", "4k3/8/8/8/8/8/8/R3K2R w", "0-0", "4k3/8/8/8/8/8/8/R4RK1 b - - 0 1"},
        {"long castling", "4k3/8/8/8/8/8/8/R3K2R w", "0-0-0", "4k3/8/8/8/8/8/8/2KR3R b - - 0 1"},
        {"long castling with letters", "4k3/8/8/8/8/8/8/R3K2R w", "O-O-O", "4k3/8/8/8/8/8/8/2KR3R b - - 0 1"},
        {"Black castles", "r3k2r/8/8/8/8/8/8/4K3 b", "0-0", "r4rk1/8/8/8/8/8/8/4K3 w - - 0 1"},
        {"Black castles long", "r3k2r/8/8/8/8/8/8/4K3 b", "O-O-O", "2kr3r/8/8/8/8/8/8/4K3 w - - 0 1"},
    };
    for (const MakeMoveCase& c : cases) EXPECT_EQ(Outcome(c), c.outcome) << c.why;
}

TEST(MakeMove, ReturnsTheMoveAndLinksTheChild) {
    const TChessboard board = Board("5r1k/4P3/8/8/8/8/8/R3K3 w Q - 0 1");
    const struct {
        const char* text;
        TMove move;
    } cases[] = {{"e7:f8N", M("e7", "f8", kKnight)}, {"0-0-0", M("e1", "c1")}, {"Ra1-a7", M("a1", "a7")}};
    for (const auto& c : cases) {
        TChessboard child;
        const TMove move = MakeMove(board, c.text, child);
        EXPECT_EQ(move, c.move) << c.text;
        EXPECT_EQ(move.PromotedType(), c.move.PromotedType()) << c.text;
        EXPECT_EQ(child.lastMove, c.move) << c.text;
        EXPECT_EQ(child.previous, &board) << c.text;
        EXPECT_EQ(child.movesLeft, board.movesLeft - 1) << c.text;
    }
}

struct LineCase {
    const char* fen;
    const char* moves;  // separated by blanks
    const char* line;
};

TEST(SolutionLine, NumbersMovesAndMarksChecks) {
    const LineCase cases[] = {
        {kStart, "", ""},
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq - 0 1", "", ""},
        {kStart, "f2-f3 e7-e5 g2-g4 Qd8-h4", "1. f2-f3 e7-e5 2. g2-g4 Qd8-h4+ "},
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq - 0 1", "e7-e5 Ng1-f3 Nb8-c6",
         "1. ... e7-e5 2. Ng1-f3 Nb8-c6 "},
        {kStart, "e2-e4 e7-e5 Qd1-h5 Nb8-c6 Bf1-c4 Ng8-f6 Qh5:f7",
         "1. e2-e4 e7-e5 2. Qd1-h5 Nb8-c6 3. Bf1-c4 Ng8-f6 4. Qh5:f7+ "},
        {"5k2/8/8/8/8/8/8/4K2R w K - 0 1", "0-0", "1. 0-0+ "},
        {"8/2pk4/8/3P4/8/8/8/4K3 b - - 0 1", "c7-c5 d5:c6", "1. ... c7-c5 2. d5:c6+ "},
        {"8/4P3/8/8/k7/8/8/4K3 w - - 0 1", "e7-e8Q", "1. e7-e8Q+ "},
        {"4k3/8/8/8/8/8/4N3/4R1K1 w - - 0 1", "Ne2-c3 Ke8-d7", "1. Ne2-c3+ Ke8-d7 "},
    };
    for (const LineCase& c : cases) {
        const TChessboard start = Start(c.fen);
        TestLine line(start);
        std::vector<TMove> moves;
        for (const TChessboard* b = &line.PlayLine(c.moves).Now(); b->previous; b = b->previous)
            moves.insert(moves.begin(), b->lastMove);
        EXPECT_EQ(SolutionLine(start, moves), c.line) << c.fen;
    }
}

}  // namespace
}  // namespace moremate
