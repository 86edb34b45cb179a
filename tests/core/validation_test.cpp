#include "core/validation.h"

#include <gtest/gtest.h>

#include <string>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "test_board.h"
#include "test_errors.h"

namespace moremate {
namespace {

using test::Board;
using test::ErrorOf;
using test::kNoError;

struct RuleCase {
    const char* why;
    const char* placement;
    std::string error;
};

TEST(Validation, RulesAndTheirMessages) {
    const std::string pawns = "Pawns cannot occupy 1st nor 8th line of the chessboard.";
    const std::string kings = "Illegal number of kings.";
    const RuleCase cases[] = {
        {"White pawn on a8", "P3k3/8/8/8/8/8/8/4K3", pawns},
        {"Black pawn on h1", "4k3/8/8/8/8/8/8/4K2p", pawns},
        {"White pawn on rank 1", "4k3/8/8/8/8/8/8/P3K3", pawns},
        {"Black pawn on rank 8", "4k2p/8/8/8/8/8/8/4K3", pawns},
        {"the pawn rule is met before the kings are counted", "7P/8/8/8/8/8/8/8", pawns},
        {"empty board", "8/8/8/8/8/8/8/8", kings},
        {"two White kings", "4k3/8/8/8/8/8/8/3KK3", kings},
        {"no White king", "4k3/8/8/8/8/8/8/8", kings},
        {"two Black kings", "3kk3/8/8/8/8/8/8/4K3", kings},
        {"no Black king", "8/8/8/8/8/8/8/4K3", kings},
        {"mutual check by rooks", "R3k3/8/8/8/8/8/8/r3K3", "Both kings attacked."},
        {"kings side by side", "8/8/8/8/8/8/8/Kk6", "Both kings attacked."},
        {"only Black in check", "R3k3/8/8/8/8/8/8/4K3", kNoError},
        {"pawns on ranks 2 and 7", "4k3/P6p/8/8/8/8/p6P/4K3", kNoError},
    };
    for (const RuleCase& c : cases) {
        TChessboard board;
        EXPECT_EQ(ErrorOf([&] { ReadFen(c.placement, board); }), c.error) << c.why;
    }
}

TEST(Validation, FailuresAreChessExceptions) {
    TChessboard board;
    EXPECT_THROW(ReadFen("8/8/8/8/8/8/8/8", board), ChessException);
    EXPECT_THROW(ReadFen("R3k3/8/8/8/8/8/8/r3K3", board), ChessException);
}

TEST(Validation, FillsKingsAttackersAndMaterial) {
    // The rook on a8 checks along the eighth rank; the knight on d2 shields e1 from the bishop.
    const TChessboard b = Board("R3k3/1q1pp3/2n5/8/1b6/8/3NP3/2B1K2R b K -");
    EXPECT_EQ(b.WhiteKingSquare(), MakeSquare(4, 0));
    EXPECT_EQ(b.BlackKingSquare(), MakeSquare(4, 7));
    EXPECT_EQ(b.blackKingAttacker, MakeSquare(0, 7));
    EXPECT_EQ(b.whiteKingAttacker, -1);
    const int counts[] = {b.whiteQueens,  b.blackQueens,  b.whiteRooks,   b.blackRooks, b.whiteBishops,
                          b.blackBishops, b.whiteKnights, b.blackKnights, b.whitePawns, b.blackPawns};
    const int expected[] = {0, 1, 2, 0, 1, 1, 1, 1, 1, 2};
    for (int i = 0; i < 10; ++i) EXPECT_EQ(counts[i], expected[i]) << "material count " << i;
}

TEST(Validation, KingAttackerNamesTheCheckingPiece) {
    struct Case {
        const char* fen;
        int whiteAttacker;
        int blackAttacker;
    };
    const Case cases[] = {
        {"4k3/8/8/8/8/8/3p4/4K3 w - -", MakeSquare(3, 1), -1},  // pawn d2
        {"4k3/8/8/8/8/5n2/8/4K3 w - -", MakeSquare(5, 2), -1},  // knight f3
        {"4k3/8/8/1B6/8/8/8/4K3 b - -", -1, MakeSquare(1, 4)},  // bishop b5
        {"4k3/8/8/8/8/8/8/4K3 w - -", -1, -1},
    };
    for (const Case& c : cases) {
        const TChessboard b = Board(c.fen);
        EXPECT_EQ(b.whiteKingAttacker, c.whiteAttacker) << c.fen;
        EXPECT_EQ(b.blackKingAttacker, c.blackAttacker) << c.fen;
    }
}

struct IndexableCase {
    const char* why;
    const char* placement;  // White pieces on rank 1 and 2, kings on e8/h8
    bool indexable;
};

TEST(Validation, WhiteMaterialIndexable) {
    const IndexableCase cases[] = {
        {"bishops on light squares b1 and d1", "4k2K/8/8/8/8/8/8/1B1B4", false},
        {"bishops on dark squares a1 and c1", "4k2K/8/8/8/8/8/8/B1B5", false},
        {"one light and one dark bishop", "4k2K/8/8/8/8/8/8/1BB5", true},
        {"a third bishop", "4k2K/8/8/8/8/8/B7/1BB5", false},
        {"two rooks, two knights, a queen", "4k2K/8/8/8/8/8/8/RNQ2NR1", true},
        {"three rooks", "4k2K/8/8/8/8/8/R7/R6R", false},
        {"three knights", "4k2K/8/8/8/8/8/N7/N6N", false},
        {"two queens", "4k2K/8/8/8/8/8/8/Q6Q", false},
        {"pawns do not count", "4k2K/8/8/8/8/8/PPPPPPPP/RNBQ1BNR", true},
        {"Black's material does not count", "qqqk3K/8/8/8/8/8/8/8", true},
    };
    for (const IndexableCase& c : cases) {
        TChessboard board;
        ReadFen(c.placement, board);
        EXPECT_EQ(board.whiteMaterialIndexable, c.indexable) << c.why;
    }
}

TEST(Validation, IndexableSquaresAreTheFirstPiecesUntilTheLimitBreaks) {
    TChessboard b;
    ReadFen("4k2K/8/8/8/8/8/8/RNBQ1BNR", b);
    EXPECT_TRUE(b.whiteMaterialIndexable);
    EXPECT_EQ(b.whiteRookSquares[0], 0);
    EXPECT_EQ(b.whiteRookSquares[1], 7);
    EXPECT_EQ(b.whiteKnightSquares[0], 1);
    EXPECT_EQ(b.whiteKnightSquares[1], 6);
    EXPECT_EQ(b.whiteBishopSquares[0], 2);
    EXPECT_EQ(b.whiteBishopSquares[1], 5);
    EXPECT_EQ(b.whiteQueenSquare[0], 3);

    // The second queen on b1 breaks the limit: the rook met later on c1 is counted, not stored.
    ReadFen("4k2K/8/8/8/8/8/8/QQR5", b);
    EXPECT_FALSE(b.whiteMaterialIndexable);
    EXPECT_EQ(b.whiteQueens, 2);
    EXPECT_EQ(b.whiteRooks, 1);
    EXPECT_EQ(b.whiteQueenSquare[0], 0);
    EXPECT_EQ(b.whiteRookSquares[0], kNoSquare);
}

TEST(Validation, RevalidationForgetsEarlierPieces) {
    TChessboard b;
    ReadFen("4k2K/8/8/8/8/8/8/Q6Q", b);
    ReadFen("4k2K/8/8/8/8/8/8/7R", b);
    EXPECT_TRUE(b.whiteMaterialIndexable);
    EXPECT_EQ(b.whiteQueens, 0);
    EXPECT_EQ(b.whiteQueenSquare[0], kNoSquare);
    EXPECT_EQ(b.whiteRookSquares[0], 7);
}

TEST(Validation, AuxiliaryStateIsClearedAsAsked) {
    TChessboard start = Board("4k3/8/8/8/8/8/8/4K3 w - -");
    auto dirty = [](TChessboard& b) {
        b.auxBits = 0x55;
        b.auxSquareColour = 2;
        b.auxWords[0] = b.auxWords[1] = 7;
    };
    TChessboard b = start;
    dirty(b);
    Validate(b, false);
    EXPECT_EQ(b.auxBits, 0);
    EXPECT_EQ(b.auxWords[0], 7u);
    EXPECT_EQ(b.auxSquareColour, 2);

    Validate(b, true);
    EXPECT_EQ(b.auxWords[0], 0u);
    EXPECT_EQ(b.auxWords[1], 0u);
    EXPECT_EQ(b.auxSquareColour, 0);

    dirty(b);
    b.previous = &start;  // inside a line the bits belong to the line
    ValidateOnLine(b);
    EXPECT_EQ(b.auxBits, 0x55);
    b.previous = nullptr;
    ValidateOnLine(b);
    EXPECT_EQ(b.auxBits, 0);
    EXPECT_EQ(b.auxWords[0], 7u);
}

TEST(PrepareForSolving, SideNotToMoveMustNotBeInCheck) {
    struct Case {
        const char* placement;
        int halfMoves;
        std::string error;
    };
    const std::string black = "Black king cannot be checked in the mate task starting postition.";
    const std::string white = "White king cannot be checked in the mate-defence task starting postition.";
    const Case cases[] = {
        {"R3k3/8/8/8/8/8/8/4K3", 1, black},
        {"R3k3/8/8/8/8/8/8/4K3", 5, black},
        {"R3k3/8/8/8/8/8/8/4K3", 2, kNoError},
        {"r3K3/8/8/8/8/8/8/4k3", 2, white},
        {"r3K3/8/8/8/8/8/8/4k3", 1, kNoError},
        {"4k3/8/8/8/8/8/8/4K3", 3, kNoError},
        {"R3k3/8/8/8/8/8/8/r3K3", 1, "Both kings attacked."},
    };
    for (const Case& c : cases) {
        TChessboard b;
        const std::string error = ErrorOf([&] {
            ReadFen(c.placement, b);
            PrepareForSolving(b, c.halfMoves, true);
        });
        EXPECT_EQ(error, c.error) << c.placement << " " << c.halfMoves;
        if (error == kNoError) {
            EXPECT_EQ(b.movesLeft, c.halfMoves);
            EXPECT_EQ(b.movesAtStart, c.halfMoves);
            EXPECT_EQ(b.WhiteToMove(), c.halfMoves % 2 == 1);
        }
    }
}

}  // namespace
}  // namespace moremate
