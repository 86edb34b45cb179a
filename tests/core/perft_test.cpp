#include "core/perft.h"

#include <gtest/gtest.h>

#include "test_board.h"

namespace moremate {
namespace {

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
