#include "engine/search/black_defence.h"

#include <gtest/gtest.h>

#include "core/notation.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

// The longest defence, asked of each reply only as far as needed, is the first of FindBlackDefence's
// best replies with the same mate, and none where a reply refutes or Black has no move: over every
// White move of a few problems (quick and slow mates, refuted moves, stalemates and mates).
TEST(LongestDefence, IsTheFirstBestReplyOfTheFullDefence) {
    const struct {
        const char* fen;
        int moves;
    } problems[] = {
        {"7k/8/5K2/8/8/8/8/6R1 w", 4},
        {"8/8/8/8/P7/3PQ3/3K4/k7 w", 3},
        {"8/7P/p7/6B1/5K2/8/8/6k1 w", 4},
        {"8/8/Q7/8/2K5/5P2/8/2k5 w", 3},
        {"8/8/pQ6/p1P5/P1p5/5p2/2k2P2/R3K3 w Q - 0 1", 3},
    };
    int nDefended = 0, nRefuted = 0, nEquals = 0;
    for (const auto& p : problems) {
        const TChessboard root = test::Directmate(p.fen, p.moves);
        TMoveList moves;
        GenerateLegalMoves(root, moves);
        for (const TMove& m : moves) {
            TChessboard node;
            PlayMove(root, m, node);
            node.movesLeft = static_cast<int16_t>(root.movesLeft - 1);
            SCOPED_TRACE(::testing::Message() << p.fen << " " << MoveToText(root, m));
            TMateSearch full(TSearchEnvironment{});
            const TDefence defence = FindBlackDefence(full, node);
            TMateSearch quick(TSearchEnvironment{});
            const TLongestDefence longest = LongestDefence(quick, node);
            if (defence.best.empty() || !defence.refutations.empty()) {
                EXPECT_TRUE(longest.move.IsNull());
                ++nRefuted;
                continue;
            }
            EXPECT_EQ(longest.move, defence.best.front());
            EXPECT_EQ(longest.mateIn, defence.mateIn);
            EXPECT_LE(quick.Nodes(), full.Nodes());
            ++nDefended;
            nEquals += defence.best.size() > 1;
        }
    }
    EXPECT_GT(nDefended, 20);
    EXPECT_GT(nRefuted, 20);
    EXPECT_GT(nEquals, 5);  // replies that put mate off equally long: the first counts
}

}  // namespace
}  // namespace moremate
