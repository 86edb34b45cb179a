#include "core/fen.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "core/validation.h"
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

TEST(ReadFen, ImproperFenMessageSaysWhatIsWrong) {
    const std::string kStart = "Improper FEN code: piece placement (first field): ";
    const std::pair<const char*, std::string> cases[] = {
        {"hello", kStart + "no '/' between ranks"},
        {"4k3/8/8 w - - 0 1 {x}", kStart + "unexpected '{'"},
        {"4k3/8/8/8/8/8/8/4K3/8", kStart + "more than 8 ranks"},
        {"4k3/8/8", kStart + "3 ranks, 8 expected"},
        {"4k3/7/8/8/8/8/8/4K3", kStart + "rank 7 has 7 squares, 8 expected"},
        {"4k3/8/8/8/8/8/8/4K2", kStart + "rank 1 has 7 squares, 8 expected"},
        {"4k3/54/8/8/8/8/8/4K3", kStart + "rank 7 has more than 8 squares"},
        {"4k3/8/8/8/8/8/8/4K2R1", kStart + "rank 1 has more than 8 squares"},
        {"4k3/8/8/8/8/8/8/4K2*", kStart + "unexpected character '*'"},
        {"4k3/8/8/8/8/8/8/4K3 w - -", "Improper FEN code"},  // a FEN: the fault lies elsewhere
    };
    for (const auto& [text, message] : cases) EXPECT_EQ(ImproperFenMessage(text), message) << text;
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

TEST(Validation, RulesAndTheirMessages) {
    const std::string pawns = "Pawns cannot occupy 1st nor 8th line of the chessboard.";
    const std::string kings = "Illegal number of kings.", both = "Both kings attacked.";
    // The pawn rule is met before the kings are counted.
    // clang-format off
    const std::pair<const char*, std::string> cases[] = {
        {"P3k3/8/8/8/8/8/8/4K3", pawns}, {"4k3/8/8/8/8/8/8/4K2p", pawns}, {"7P/8/8/8/8/8/8/8", pawns},
        {"8/8/8/8/8/8/8/8", kings}, {"4k3/8/8/8/8/8/8/3KK3", kings}, {"4k3/8/8/8/8/8/8/8", kings},
        {"3kk3/8/8/8/8/8/8/4K3", kings}, {"R3k3/8/8/8/8/8/8/r3K3", both}, {"8/8/8/8/8/8/8/Kk6", both},
        {"R3k3/8/8/8/8/8/8/4K3", kNoError}, {"4k3/P6p/8/8/8/8/p6P/4K3", kNoError},
    };
    // clang-format on
    for (const auto& [placement, error] : cases) {
        TChessboard board;
        EXPECT_EQ(ErrorOf([&board, fen = placement] { ReadFen(fen, board); }), error) << placement;
    }
    TChessboard board;
    EXPECT_THROW(ReadFen("8/8/8/8/8/8/8/8", board), ChessException);
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
    // clang-format off
    const struct { const char* fen; int white, black; } cases[] = {
        {"4k3/8/8/8/8/8/3p4/4K3 w", MakeSquare(3, 1), -1}, {"4k3/8/8/8/8/5n2/8/4K3 w", MakeSquare(5, 2), -1},
        {"4k3/8/8/1B6/8/8/8/4K3 b", -1, MakeSquare(1, 4)}, {"4k3/8/8/8/8/8/8/4K3 w", -1, -1},
    };
    // clang-format on
    for (const auto& c : cases) {
        const TChessboard b = Board(c.fen);
        EXPECT_EQ(b.whiteKingAttacker, c.white) << c.fen;
        EXPECT_EQ(b.blackKingAttacker, c.black) << c.fen;
    }
}

TEST(Validation, WhiteMaterialIndexable) {
    // Two bishops of one colour, a third bishop, rook, knight or a second queen break the limit.
    // clang-format off
    const std::pair<const char*, bool> cases[] = {
        {"4k2K/8/8/8/8/8/8/1B1B4", false}, {"4k2K/8/8/8/8/8/8/B1B5", false}, {"4k2K/8/8/8/8/8/8/1BB5", true},
        {"4k2K/8/8/8/8/8/B7/1BB5", false}, {"4k2K/8/8/8/8/8/8/RNQ2NR1", true}, {"4k2K/8/8/8/8/8/R7/R6R", false},
        {"4k2K/8/8/8/8/8/N7/N6N", false},  {"4k2K/8/8/8/8/8/8/Q6Q", false},    {"qqqk3K/8/8/8/8/8/8/8", true},
        {"4k2K/8/8/8/8/8/PPPPPPPP/RNBQ1BNR", true},
    };
    // clang-format on
    for (const auto& [placement, indexable] : cases) {
        TChessboard board;
        ReadFen(placement, board);
        EXPECT_EQ(board.whiteMaterialIndexable, indexable) << placement;
    }
}

TEST(Validation, IndexableSquaresAreTheFirstPiecesUntilTheLimitBreaks) {
    TChessboard b;
    ReadFen("4k2K/8/8/8/8/8/8/RNBQ1BNR", b);
    EXPECT_TRUE(b.whiteMaterialIndexable);
    const int squares[] = {b.whiteRookSquares[0],   b.whiteRookSquares[1],   b.whiteKnightSquares[0],
                           b.whiteKnightSquares[1], b.whiteBishopSquares[0], b.whiteBishopSquares[1]};
    const int expected[] = {0, 7, 1, 6, 2, 5};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(squares[i], expected[i]) << i;
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
    const std::string black = "Black king cannot be checked in the mate task starting postition.";
    const std::string white = "White king cannot be checked in the mate-defence task starting postition.";
    // clang-format off
    const struct Case { const char* placement; int halfMoves; std::string error; } cases[] = {
        {"R3k3/8/8/8/8/8/8/4K3", 5, black}, {"R3k3/8/8/8/8/8/8/4K3", 2, kNoError}, {"r3K3/8/8/8/8/8/8/4k3", 2, white},
        {"r3K3/8/8/8/8/8/8/4k3", 1, kNoError}, {"R3k3/8/8/8/8/8/8/r3K3", 1, "Both kings attacked."},
    };
    // clang-format on
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
