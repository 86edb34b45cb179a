#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "core/fen.h"
#include "core/validation.h"
#include "engine/passes/run_register.h"
#include "engine/search/mate_search.h"

namespace moremate {
namespace {

// Two threads search the first moves of one problem against one register, as the multithreading
// levels do; a small register makes them empty it while the other inserts and looks up.
TEST(ConcurrentSearch, SharedRegisterGivesTheSameResultsAsOneThread) {
    TChessboard root;
    ASSERT_TRUE(ReadFen("B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1", root));
    PrepareForSolving(root, 7, true);
    TMoveList moves;
    GenerateLegalMoves(root, moves);

    auto resultsOf = [&](int threads, CRunRegister& reg) {
        std::vector<uint8_t> results(static_cast<size_t>(moves.count));
        std::vector<std::thread> pool;
        for (int t = 0; t < threads; ++t) {
            pool.emplace_back([&, t] {
                TSearchEnvironment env;
                env.store = &reg;
                TMateSearch search(env);
                for (int i = t; i < moves.count; i += threads) {
                    TChessboard child;
                    PlayMove(root, moves.moves[i], child);
                    results[static_cast<size_t>(i)] = search.FindForcedMate(child);
                }
            });
        }
        for (std::thread& th : pool) th.join();
        return results;
    };
    CRunRegister small(20'000), alone(20'000);
    const std::vector<uint8_t> together = resultsOf(2, small);
    EXPECT_EQ(together, resultsOf(1, alone));
    EXPECT_EQ(std::count(together.begin(), together.end(), kMate), 1);
}

}  // namespace
}  // namespace moremate
