#include "core/gives_check.h"

#include <gtest/gtest.h>

#include "core/movegen.h"
#include "core/notation.h"
#include "test_board.h"

namespace moremate {
namespace {

// Walks every line of `depth` half-moves and compares the quick check test with the position
// actually played: direct, discovered and double checks, promotions, castling and en passant.
void CompareAlongTree(const TChessboard& board, int depth, int& compared) {
    TMoveList list;
    GenerateLegalMoves(board, list);
    for (const TMove& m : list) {
        TChessboard after;
        PlayMove(board, m, after);
        ASSERT_EQ(GivesCheck(board, m), after.InCheck()) << MoveToText(board, m);
        ++compared;
        if (depth > 1) CompareAlongTree(after, depth - 1, compared);
    }
}

TEST(GivesCheck, AgreesWithThePlayedPosition) {
    const char* fens[] = {
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
        "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
        "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
        "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
        "1k6/1P6/8/8/8/8/8/1R2K3 w - -",  // promotion uncovering the file behind it
        "5k2/8/8/8/8/8/8/4K2R w K -",     // check by the castling rook
    };
    int compared = 0;
    for (const char* fen : fens) CompareAlongTree(test::Board(fen), 3, compared);
    EXPECT_GT(compared, 100000);
}

}  // namespace
}  // namespace moremate
