#include "core/movegen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "core/attacks.h"
#include "core/fen.h"
#include "core/gives_check.h"
#include "core/king_escape.h"
#include "core/king_flights.h"
#include "core/notation.h"
#include "core/occupancy.h"
#include "core/perft.h"
#include "core/squares_after.h"
#include "core/squares_hash.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Board;
using test::M;

TEST(Attacks, AnswerNamesSingleAttackerOrMany) {
    // d4 is hit by the rook on d1 and the bishop on a7; e5 only by the rook on a5; h3 by nobody.
    const TChessboard b = Board("k7/B7/8/R7/8/8/8/3R2K1 w");
    EXPECT_EQ(AttackerOf(b, kWhite, 3, 3), kManyAttackers);
    EXPECT_EQ(AttackerOf(b, kWhite, 4, 4), MakeSquare(0, 4));
    EXPECT_EQ(AttackerOf(b, kBlack, 7, 2), kNoAttacker);
    TAttackerList list;
    EXPECT_EQ(AttackerOf(b, kWhite, 3, 3, &list), kManyAttackers);
    ASSERT_EQ(list.count, 2);
}

// The reach of a slider read from the indexed table against a walk along its rays, on every
// square with random placements of the other pieces (dense and sparse).
TEST(Attacks, SliderReachAgreesWithTheRays) {
    auto walked = [](int sq, int first, int last, uint64_t occupied) {
        uint64_t reach = 0;
        for (int d = first; d <= last; ++d) {
            const CRay& ray = g_geometry.rays[sq][d];
            for (int i = 0; i < ray.length; ++i) {
                reach |= Bit(ray.squares[i]);
                if ((occupied >> ray.squares[i]) & 1) break;
            }
        }
        return reach;
    };
    uint64_t state = 88172645463325252ull;
    auto random = [&state] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return state;
    };
    for (int sq = 0; sq < 64; ++sq) {
        for (int i = 0; i < 300; ++i) {
            const uint64_t occupied = i % 2 ? random() : random() & random() & random();
            ASSERT_EQ(LineAttacks(occupied, sq), walked(sq, kNorth, kWest, occupied)) << sq;
            ASSERT_EQ(DiagonalAttacks(occupied, sq), walked(sq, kNorthEast, kSouthWest, occupied)) << sq;
        }
    }
}

TEST(Attacks, FlightSquaresLiftTheKing) {
    // The rook on a8 checks along the eighth rank: g8 stays covered behind the lifted king.
    EXPECT_EQ(BlackKingFlightSquares(Board("R6k/8/8/8/8/8/8/K7 b")), 2);
    // Corner king with three neighbours, all free.
    EXPECT_EQ(BlackKingFlightSquares(Board("7k/8/8/8/8/8/8/K7 b")), 3);
    // Black pieces block their own king.
    EXPECT_EQ(BlackKingFlightSquares(Board("6rk/6pp/8/8/8/8/8/K7 b")), 0);
}

TEST(LegalMoves, Counts) {
    const struct {
        const char* why;
        const char* fen;
        int moves;
    } cases[] = {
        {"double check: king moves only", "4k3/8/8/8/1b6/8/4r3/3NK3 w", 2},
        {"single check: capture, block or step aside", "4k3/8/8/8/8/8/4r3/R3K3 w Q -", 3},
        {"pinned rook moves along the pin only", "4r1k1/8/8/8/8/8/4R3/4K3 w", 10},
        {"pinned knight never moves", "4r1k1/8/8/8/8/8/4N3/4K3 w", 4},
        {"no castling through an attacked square", "4k3/8/8/8/8/8/5r2/R3K2R w KQ -", 22},
        {"castling with the rook attacked is fine", "4k3/8/8/8/8/8/7r/R3K2R w KQ -", 17},
        {"four promotions each", "4k3/1P6/8/8/8/8/8/4K3 w", 9},
        {"stalemate", "7k/5Q2/8/8/8/8/8/K7 b", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(CountLegalMoves(Board(c.fen)), c.moves) << c.why;
}

TEST(LegalMoves, EnPassantOnlyAfterDoubleStepInsideTheLine) {
    const TChessboard white = Board("4k3/8/8/8/3p4/8/4P3/4K3 w");
    TChessboard afterDouble, afterSingle, afterSecond;
    PlayMove(white, M("e2", "e4"), afterDouble);
    TMoveList list;
    GenerateLegalMoves(afterDouble, list);
    ASSERT_TRUE(list.Contains(M("d4", "e3")));
    TChessboard captured;
    PlayMove(afterDouble, M("d4", "e3"), captured);
    EXPECT_EQ(captured.squares[MakeSquare(4, 3)], kEmpty);
    EXPECT_EQ(captured.whitePawns, 0);

    PlayMove(white, M("e2", "e3"), afterSingle);
    PlayMove(afterSingle, M("e8", "d8"), afterSecond);
    EXPECT_EQ(afterSecond.epSquare, kNoSquare);
}

TEST(PlayMove, KeepsDerivedFieldsUpToDate) {
    const TChessboard b = Board("r3k3/1P6/8/8/8/8/8/4K2R w Kq -");
    TChessboard promoted, castled;
    PlayMove(b, M("b7", "a8", kKnight), promoted);
    EXPECT_EQ(promoted.squares[MakeSquare(0, 7)], kWhite | kKnight);
    EXPECT_EQ(promoted.whitePawns, 0);
    EXPECT_EQ(promoted.whiteKnights, 1);
    EXPECT_EQ(promoted.blackRooks, 0);
    EXPECT_EQ(promoted.castling & kBlackQueenside, 0);
    EXPECT_EQ(promoted.previous, &b);
    EXPECT_EQ(promoted.movesLeft, b.movesLeft - 1);

    PlayMove(b, M("e1", "g1"), castled);
    EXPECT_EQ(castled.squares[MakeSquare(5, 0)], kWhite | kRook);
    EXPECT_EQ(castled.squares[MakeSquare(7, 0)], kEmpty);
    EXPECT_EQ(castled.whiteKingFile, 6);
    EXPECT_EQ(CastlingRights(castled) & (kWhiteKingside | kWhiteQueenside), 0);
}

TEST(Mate, MateAndStalemateAreTold) {
    EXPECT_TRUE(IsMate(Board("R5k1/5ppp/8/8/8/8/8/6K1 b")));
    EXPECT_FALSE(IsStalemate(Board("R5k1/5ppp/8/8/8/8/8/6K1 b")));
    EXPECT_TRUE(IsStalemate(Board("7k/5Q2/8/8/8/8/8/K7 b")));
    EXPECT_FALSE(IsMate(Board("7k/5Q2/8/8/8/8/8/K7 b")));
}

// Positions that stress the rules: castling, en passant discoveries, promotions with capture,
// checks by pawns, pins; and a promotion uncovering the file behind it, a check by the castling rook.
const char* const kTreeRoots[] = {
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "1k6/1P6/8/8/8/8/8/1R2K3 w - -",
    "5k2/8/8/8/8/8/8/4K2R w K -",
};

// Hands every move of every line of `depth` half-moves to `visit` with the positions before and
// after it, and returns how many there were.
template <typename Visit>
int WalkLines(const TChessboard& board, int depth, Visit& visit) {
    TMoveList list;
    GenerateLegalMoves(board, list);
    int moves = 0;
    for (const TMove& m : list) {
        TChessboard after;
        PlayMove(board, m, after);
        visit(board, m, after);
        moves += 1 + (depth > 1 ? WalkLines(after, depth - 1, visit) : 0);
    }
    return moves;
}

// The quick check test against the position actually played: direct, discovered and double
// checks, promotions, castling and en passant.
TEST(GivesCheck, AgreesWithThePlayedPosition) {
    auto compare = [](const TChessboard& board, const TMove& m, const TChessboard& after) {
        ASSERT_EQ(GivesCheck(board, m), after.InCheck()) << MoveToText(board, m);
    };
    int compared = 0;
    for (const char* fen : kTreeRoots) compared += WalkLines(test::Board(fen), 3, compare);
    EXPECT_GT(compared, 100000);
}

// The piece bytes and hash worked out from the move alone against the position played, and
// whether they tell the whole position: captures, promotions, castling (rights lost by king, rook
// and a rook taken), double steps beside a pawn that may take en passant and en passant captures.
TEST(SquaresAfterMove, AgreesWithThePlayedPosition) {
    auto compare = [](const TChessboard& board, const TMove& m, const TChessboard& after) {
        uint8_t squares[64];
        const TSquaresAfter worked = SquaresAfterMove(board, HomeCastlingRights(board.squares), m, squares);
        ASSERT_TRUE(std::equal(squares, squares + 64, after.squares)) << MoveToText(board, m);
        ASSERT_EQ(worked.hash, after.squaresHash) << MoveToText(board, m);
        const Piece taker = MakePiece(after.ToMove(), kPawn);
        const int passed = after.epSquare == kNoSquare
                               ? -1
                               : (after.WhiteToMove() ? after.epSquare - 8 : after.epSquare + 8);
        const bool enPassant = passed >= 0 && ((FileOf(passed) > 0 && after.squares[passed - 1] == taker) ||
                                               (FileOf(passed) < 7 && after.squares[passed + 1] == taker));
        const bool tellsAll = CastlingRights(after) == HomeCastlingRights(after.squares) && !enPassant;
        ASSERT_EQ(worked.tellsAll, tellsAll) << WriteFen(board) << " " << MoveToText(board, m);
    };
    int compared = 0, partial = 0;
    auto count = [&](const TChessboard& board, const TMove& m, const TChessboard& after) {
        compare(board, m, after);
        partial += !(CastlingRights(after) == HomeCastlingRights(after.squares));
    };
    for (const char* fen : kTreeRoots) compared += WalkLines(test::Board(fen), 3, count);
    EXPECT_GT(compared, 100000);
    EXPECT_GT(partial, 500);  // positions whose squares do not tell all were met
}

// The checking moves generated on their own against the legal moves that give check, in the same
// order, in every position of the lines.
TEST(GivesCheck, CheckingMovesAreTheLegalMovesThatCheck) {
    auto compare = [](const TChessboard&, const TMove&, const TChessboard& after) {
        TMoveList legal, checking, expected;
        GenerateLegalMoves(after, legal);
        for (const TMove& m : legal)
            if (GivesCheck(after, m)) expected.moves[expected.count++] = m;
        GenerateCheckingMoves(after, checking);
        ASSERT_EQ(checking.count, expected.count) << WriteFen(after);
        for (int i = 0; i < expected.count; ++i)
            ASSERT_EQ(checking.moves[i], expected.moves[i]) << WriteFen(after);
    };
    for (const char* fen : kTreeRoots) WalkLines(test::Board(fen), 2, compare);
}

// The checks that may mate, narrowed by the free squares next to the king, against all checks:
// in the same order, and every check that mates among them, in every position of the lines.
TEST(GivesCheck, ChecksThatMayMateKeepEveryMate) {
    int mates = 0, dropped = 0;
    auto compare = [&](const TChessboard&, const TMove&, const TChessboard& after) {
        TMoveList checking, narrowed;
        GenerateCheckingMoves(after, checking);
        const CKingFlights flights(after);
        GenerateCheckingMoves(after, narrowed, &flights);
        int k = 0;
        for (const TMove& m : checking) {
            TChessboard child;
            PlayMove(after, m, child);
            const bool mating = !HasLegalMove(child);
            const bool kept = k < narrowed.count && narrowed.moves[k] == m;
            ASSERT_TRUE(kept || !mating) << MoveToText(after, m) << " in " << WriteFen(after);
            k += kept;
            mates += mating;
            dropped += !kept;
        }
        ASSERT_EQ(k, narrowed.count) << WriteFen(after);
    };
    for (const char* fen : kTreeRoots) WalkLines(test::Board(fen), 3, compare);
    EXPECT_GT(mates, 100);
    EXPECT_GT(dropped, 10000);
}

// Tries the moves of all the children of `board` in each of them (a refutation remembered from a
// sibling is tried so), against the child's legal moves; then the same one level down. Returns
// how many were tried.
int CompareSiblingMoves(const TChessboard& board, int depth) {
    TMoveList list;
    GenerateLegalMoves(board, list);
    std::vector<TChessboard> children(static_cast<size_t>(list.count));
    std::vector<TMoveList> replies(children.size());
    std::vector<TMove> candidates;
    for (size_t i = 0; i < children.size(); ++i) {
        PlayMove(board, list.moves[i], children[i]);
        GenerateLegalMoves(children[i], replies[i]);
        for (const TMove& m : replies[i])
            if (std::find(candidates.begin(), candidates.end(), m) == candidates.end())
                candidates.push_back(m);
    }
    int tried = 0;
    for (size_t i = 0; i < children.size(); ++i) {
        for (const TMove& m : candidates) {
            ++tried;
            if (IsLegalMove(children[i], m) != replies[i].Contains(m)) {
                ADD_FAILURE() << MoveToText(children[i], m) << " in " << WriteFen(children[i]);
                return tried;
            }
        }
        if (depth > 1) tried += CompareSiblingMoves(children[i], depth - 1);
    }
    return tried;
}

TEST(LegalMoves, ASiblingsMoveIsLegalExactlyWhenGenerated) {
    int tried = 0;
    for (const char* fen : kTreeRoots) tried += CompareSiblingMoves(Board(fen), 2);
    EXPECT_GT(tried, 100000);
}

// The quick answers against the position played: the king of the side not to move has a step (not
// castling) after every move but castling and en passant exactly when the quick answer says so.
TEST(KingEscape, AgreesWithTheKingsMovesInThePlayedPosition) {
    auto compare = [](const TChessboard& board, const TMove& m, const TChessboard& after) {
        const bool special = (TypeOf(board.squares[m.from]) == kKing && std::abs(m.to - m.from) == 2) ||
                             (TypeOf(board.squares[m.from]) == kPawn && m.to == board.epSquare);
        TMoveList replies;
        GenerateLegalMoves(after, replies);
        const int king = after.KingSquare(after.ToMove());
        bool step = false;
        for (const TMove& r : replies) step = step || (r.from == king && std::abs(r.to - r.from) != 2);
        ASSERT_EQ(KingCanStepAfter(board, m), step && !special)
            << MoveToText(board, m) << " in " << WriteFen(board);
        ASSERT_EQ(CKingFlights(board).CanStepAfter(board, m), step && !special)
            << MoveToText(board, m) << " in " << WriteFen(board);
    };
    int compared = 0;
    for (const char* fen : kTreeRoots) compared += WalkLines(test::Board(fen), 3, compare);
    EXPECT_GT(compared, 100000);
}

// The bit boards, the squares' hash and the checkers PlayMove keeps against those the validation
// derives afresh from the piece bytes, after captures, promotions, castling and en passant.
TEST(PlayMove, BitBoardsHashAndCheckersMatchTheSquares) {
    auto compare = [](const TChessboard& board, const TMove& m, const TChessboard& after) {
        TChessboard fresh = after;
        ValidateOnLine(fresh);
        for (int k = 0; k < 8; ++k) ASSERT_EQ(after.pieceBits[k], fresh.pieceBits[k]) << MoveToText(board, m);
        ASSERT_EQ(after.squaresHash, fresh.squaresHash) << MoveToText(board, m);
        ASSERT_EQ(fresh.squaresHash, SquaresHash(fresh.squares));
        ASSERT_EQ(after.whiteKingAttacker, fresh.whiteKingAttacker) << MoveToText(board, m);
        ASSERT_EQ(after.blackKingAttacker, fresh.blackKingAttacker) << MoveToText(board, m);
    };
    for (const char* fen : kTreeRoots) WalkLines(test::Board(fen), 3, compare);
}

struct PerftCase {
    const char* name;
    const char* fen;
    int depth;
    uint64_t nodes;
};

// The published reference counts; each position stresses other rules (castling through attacked
// squares, en passant discoveries, promotions with capture, checks by pawns, pins).
const PerftCase kCases[] = {
    {"initial", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 5, 4865609},
    {"kiwipete", "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 4, 4085603},
    {"endgame ep", "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 5, 674624},
    {"promotions", "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 4, 422333},
    {"promotions mirrored", "r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1", 4, 422333},
    {"talkchess", "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", 4, 2103487},
    {"middlegame", "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10", 4, 3894594},
};

TEST(Perft, PublishedCounts) {
    for (const PerftCase& c : kCases) {
        EXPECT_EQ(Perft(test::Board(c.fen), c.depth), c.nodes) << c.name;
    }
}

TEST(Perft, DivideSumsToTotal) {
    const TChessboard board = test::Board(kCases[1].fen);
    uint64_t sum = 0;
    for (const TPerftDivision& d : PerftDivide(board, 3)) sum += d.nodes;
    EXPECT_EQ(sum, 97862u);
}

}  // namespace
}  // namespace moremate
