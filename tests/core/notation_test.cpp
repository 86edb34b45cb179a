#include "core/notation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/fen.h"
#include "core/pieces.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::ErrorOf;
using test::kNoError;
using test::M;
using test::TestLine;

const char* const kStart = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

TEST(String2Square, ReadsSquaresInEitherCaseAndRejectsTheRest) {
    for (int sq = 0; sq < 64; ++sq) EXPECT_EQ(String2Square(SquareText(sq)), sq);
    EXPECT_EQ(SquareText(63), "h8");
    EXPECT_EQ(String2Square("E4"), 28);
    for (const char* text : {"i1", "a9", "a0", "4e", "e", "", "e44"})
        EXPECT_EQ(ErrorOf([&] { String2Square(text); }), std::string("Error in String2Square() ") + text);
}

TEST(MoveToText, LongNotation) {
    // clang-format off
    const struct { TMove move; Piece moving; bool captures; const char* text; } cases[] = {
        {M("e2", "e2"), kEmpty, false, "-"},                      {M("e2", "e4"), kWhite | kPawn, false, "e2-e4"},
        {M("c5", "c1"), kBlack | kQueen, true, "Qc5:c1"},         {M("g1", "f3"), kWhite | kKnight, false, "Ng1-f3"},
        {M("e7", "d8", kQueen), kWhite | kPawn, true, "e7:d8Q"},  {M("b7", "b8", kKnight), kWhite | kPawn, false,
         "b7-b8N"},
        {M("e1", "g1"), kWhite | kKing, false, "0-0"},            {M("e8", "c8"), kBlack | kKing, false, "0-0-0"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(MoveToText(c.move, c.moving, c.captures), c.text) << c.text;
    // From the board: en passant is a capture.
    TestLine line(test::Problem("4k3/3p4/8/4P3/8/8/8/R3K3 b - - 0 1", 4));
    const TChessboard& board = line.Play("d7-d5").Now();
    EXPECT_EQ(MoveToText(board, M("e5", "d6")), "e5:d6");
    EXPECT_EQ(MoveToText(board, M("a1", "a8")), "Ra1-a8");
    EXPECT_EQ(MoveToText(board, M("e1", "c1")), "0-0-0");
}

TEST(ParseFullDescription, MovesAndErrors) {
    const std::string length = "Improper string length", improper = "Improper full description of move";
    // The piece letter is not examined; promotion letters of several languages are.
    // clang-format off
    const struct { const char* text; bool white; TMove move; std::string error; } cases[] = {
        {"  e2-e4  ", true, M("e2", "e4"), kNoError},       {"E2-E4", true, M("e2", "e4"), kNoError},
        {"Xh4-g4", false, M("h4", "g4"), kNoError},         {"e7:d8Q", true, M("e7", "d8", kQueen), kNoError},
        {"e7xd8Q", true, M("e7", "d8", kQueen), kNoError},  {"e7-e8h", true, M("e7", "e8", kQueen), kNoError},
        {"e7-e8W", true, M("e7", "e8", kRook), kNoError},   {"e7-e8G", true, M("e7", "e8", kBishop), kNoError},
        {"e7-e8S", true, M("e7", "e8", kKnight), kNoError}, {"b2-b1N", false, M("b2", "b1", kKnight), kNoError},
        {"0-0", true, M("e1", "g1"), kNoError},             {" 0-0-0 ", false, M("e8", "c8"), kNoError},
        {"", true, {}, "Empty string"},   {"   ", true, {}, length},  {"e2e4", true, {}, length},
        {"Rh4--g4", true, {}, length},    {"e7-e8X", true, {}, "Unknown figure letter: X"},
        {"2e-e4", true, {}, improper},    {"e2-e9", true, {}, improper}, {"i2-e4", true, {}, improper},
    };
    // clang-format on
    for (const auto& c : cases) {
        TMove move;
        EXPECT_EQ(ErrorOf([&] { move = ParseFullDescription(c.text, c.white); }), c.error) << c.text;
        if (c.error == kNoError) {
            EXPECT_EQ(move, c.move) << c.text;
            EXPECT_EQ(move.PromotedType(), c.move.PromotedType()) << c.text;
        }
    }
}

// A long problem, so that every line fits; the side to move is the FEN's.
TChessboard Start(const std::string& fen) {
    return test::Problem(fen, FenWhiteToMove(fen) ? 9 : 8);
}

// The FEN after the moves, or the message of the failing last move.
std::string Outcome(const char* fen, const char* moves) {
    TestLine line(Start(fen));
    const std::string error = ErrorOf([&] { line.PlayLine(moves); });
    return error == kNoError ? WriteFen(line.Now()) : error;
}

struct MakeMoveCase {
    const char* fen;
    const char* moves;  // separated by blanks
    std::string outcome;
};

TEST(MakeMove, RefusesShortImproperAndIllegalMoves) {
    const std::string brief = "Short notation not supported.", improper = "Improper move description";
    const std::string illegal = "Illegal move";
    // clang-format off
    const MakeMoveCase cases[] = {
        {kStart, "Nf3", brief}, {kStart, "e4", brief}, {kStart, "exd5", brief}, {kStart, "e2e4", brief},
        {kStart, ":e2-e4", improper}, {kStart, "e3-e4", improper}, {kStart, "Bg1-f3", improper},
        {kStart, "g1-f3", improper}, {kStart, "e7-e5", improper}, {kStart, "Ra1-a2", improper},
        {kStart, "Xg1-f3", "Unknown figure letter: X"}, {kStart, "Nb1-b3", illegal}, {kStart, "Ra1-a3", illegal},
        {kStart, "e2-e5", illegal}, {kStart, "e2-d3", illegal}, {kStart, "e2-e4Q", illegal},
        {"4k3/8/8/8/8/4n3/4P3/4K3 w", "e2-e4", illegal}, {"4k3/8/8/8/8/4P3/8/4K3 w", "e3-e5", illegal},
        {"4k3/8/8/4p3/4P3/8/8/4K3 w", "e4-e5", illegal}, {"4k3/8/8/4p3/8/8/8/4K3 b", "e5-e6", illegal},
        {"4k3/4r3/8/8/8/8/4N3/4K3 w", "Ne2-c3", illegal}, {"4k3/8/8/8/8/8/r7/4K3 w", "Ke1-e2", illegal},
        {"4k3/8/8/8/8/8/8/r3K2R w", "Rh1-h2", illegal}, {"3r3k/4P3/8/8/8/8/8/4K3 w", "e7-e8", illegal},
        {"3r3k/4P3/8/8/8/8/8/4K3 w", "e7-e8K", illegal}, {"4k3/8/8/8/8/8/8/4K2R w", "Ke1-g1", illegal},
        {"4kr2/8/8/8/8/8/8/4K2R w", "0-0", illegal}, {"4r1k1/8/8/8/8/8/8/4K2R w", "0-0", illegal},
        {"4k3/8/8/8/8/8/8/RN2K3 w", "O-O-O", illegal},
        {"4k3/8/8/8/8/8/8/4K2R w", "Rh1-h2 Ke8-d8 Rh2-h1 Kd8-e8 0-0", illegal},
        {"4k3/3p4/8/4P3/8/8/8/4K3 b", "d7-d5 Ke1-d1 Ke8-f7 e5:d6", illegal},
    };
    // clang-format on
    for (const MakeMoveCase& c : cases)
        EXPECT_EQ(Outcome(c.fen, c.moves), c.outcome) << c.fen << " " << c.moves;
}

TEST(MakeMove, PlaysLongNotation) {
    const char* const afterNf3 = "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - 0 1";
    // clang-format off
    const MakeMoveCase cases[] = {
        {kStart, "Ng1-f3", afterNf3},
        {kStart, "Ng1:f3", afterNf3},  // a capture mark on an empty square
        {kStart, "e2-e4 e7-e5 Ng1-f3 Nb8-c6", "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 0 3"},
        {"4k3/8/8/8/8/8/8/3QK3 w", "Dd1-h5", "4k3/8/8/7Q/8/8/8/4K3 b - - 0 1"},
        {"4k3/8/8/3p4/4P3/8/8/4K3 w", "e4-d5", "4k3/8/8/3P4/8/8/8/4K3 b - - 0 1"},
        {"3rk3/4P3/8/8/8/8/8/4K3 w", "e7:d8Q", "3Qk3/8/8/8/8/8/8/4K3 b - - 0 1"},
        {"3r3k/4P3/8/8/8/8/8/4K3 w", "e7-e8N", "3rN2k/8/8/8/8/8/8/4K3 b - - 0 1"},
        {"4k3/8/8/8/8/8/1p6/4K3 b", "b2-b1Q", "4k3/8/8/8/8/8/8/1q2K3 w - - 0 1"},
        {"4k3/3p4/8/4P3/8/8/8/4K3 b", "d7-d5 e5:d6", "4k3/8/3P4/8/8/8/8/4K3 b - - 0 2"},
        {"4k3/8/8/8/8/8/8/R3K2R w", "0-0", "4k3/8/8/8/8/8/8/R4RK1 b - - 0 1"},
        {"4k3/8/8/8/8/8/8/R3K2R w", "O-O-O", "4k3/8/8/8/8/8/8/2KR3R b - - 0 1"},
        {"r3k2r/8/8/8/8/8/8/4K3 b", "0-0", "r4rk1/8/8/8/8/8/8/4K3 w - - 0 1"},
        {"r3k2r/8/8/8/8/8/8/4K3 b", "0-0-0", "2kr3r/8/8/8/8/8/8/4K3 w - - 0 1"},
        // Move numbers, double steps not written, castling rights lost by moves and captures.
        {kStart, "e2-e4 e7-e5", "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - 0 2"},
        {kStart, "e2-e4 e7-e5 Ng1-f3 Nb8-c6 Bf1-c4", "r1bqkbnr/pppp1ppp/2n5/4p3/2B1P3/5N2/PPPP1PPP/RNBQK2R b KQkq - 0 3"},
        {"r3k2r/8/8/8/8/8/8/R3K2R w", "0-0", "r3k2r/8/8/8/8/8/8/R4RK1 b kq - 0 1"},
        {"4k3/8/8/8/8/8/8/4K2R w", "Rh1-h2 Ke8-d8 Rh2-h1", "3k4/8/8/8/8/8/8/4K2R b - - 0 2"},
        {"r3k2r/8/8/8/8/8/8/4K3 b", "Ke8-d8 Ke1-d1 Kd8-e8", "r3k2r/8/8/8/8/8/8/3K4 w - - 0 2"},
        {"r3k2r/8/8/8/8/8/8/R3K2R w", "Ra1:a8", "R3k2r/8/8/8/8/8/8/4K2R b Kk - 0 1"},
    };
    // clang-format on
    for (const MakeMoveCase& c : cases) EXPECT_EQ(Outcome(c.fen, c.moves), c.outcome) << c.moves;
}

TEST(MakeMove, ReturnsTheMoveAndLinksTheChild) {
    const TChessboard board = test::Board("5r1k/4P3/8/8/8/8/8/R3K3 w Q - 0 1");
    const std::pair<const char*, TMove> cases[] = {{"e7:f8N", M("e7", "f8", kKnight)},
                                                   {"0-0-0", M("e1", "c1")}};
    for (const auto& [text, expected] : cases) {
        TChessboard child;
        const TMove move = MakeMove(board, text, child);
        EXPECT_EQ(move, expected) << text;
        EXPECT_EQ(move.PromotedType(), expected.PromotedType()) << text;
        EXPECT_EQ(child.lastMove, expected) << text;
        EXPECT_EQ(child.previous, &board) << text;
        EXPECT_EQ(child.movesLeft, board.movesLeft - 1) << text;
    }
}

TEST(SolutionLine, NumbersMovesAndMarksChecks) {
    // clang-format off
    const struct { const char* fen; const char* moves; const char* line; } cases[] = {
        {kStart, "", ""},
        {kStart, "f2-f3 e7-e5 g2-g4 Qd8-h4", "1. f2-f3 e7-e5 2. g2-g4 Qd8-h4+ "},
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b", "e7-e5 Ng1-f3", "1. ... e7-e5 2. Ng1-f3 "},
        {"5k2/8/8/8/8/8/8/4K2R w K", "0-0", "1. 0-0+ "},
        {"8/2pk4/8/3P4/8/8/8/4K3 b", "c7-c5 d5:c6", "1. ... c7-c5 2. d5:c6+ "},
        {"8/4P3/8/8/k7/8/8/4K3 w", "e7-e8Q", "1. e7-e8Q+ "},
        {"4k3/8/8/8/8/8/4N3/4R1K1 w", "Ne2-c3 Ke8-d7", "1. Ne2-c3+ Ke8-d7 "},
    };
    // clang-format on
    for (const auto& c : cases) {
        const TChessboard start = Start(c.fen);
        TestLine line(start);
        std::vector<TMove> moves;
        for (const TChessboard* b = &line.PlayLine(c.moves).Now(); b->previous; b = b->previous)
            moves.insert(moves.begin(), b->lastMove);
        EXPECT_EQ(SolutionLine(start, moves), c.line) << c.fen;
    }
}

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
