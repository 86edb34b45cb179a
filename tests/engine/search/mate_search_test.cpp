#include "engine/search/mate_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "engine/passes/run_register.h"
#include "engine/search/dead_position.h"
#include "tests/engine/map_store.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Problem;
using test::TestLine;

// Stalemate is no mate, nor a stalemating move; a Black side mated already is. A register gives the
// results of the plain search, and gives them again from what it stored.
TEST(FindForcedMate, ResultCodesWithAndWithoutARegister) {
    // clang-format off
    const struct { const char* fen; int halfMoves; uint8_t result; } cases[] = {
        {"6k1/5ppp/8/8/8/8/8/R5K1 w", 1, kMate}, {"6k1/5pp1/7p/8/8/8/8/R5K1 w", 1, kNoMate},
        {"7k/8/5K2/8/8/8/8/6R1 w", 3, kMate},    {"7k/5Q2/6K1/8/8/8/8/8 b", 2, kNoMate},
        {"R6k/6pp/8/8/8/8/8/6K1 b", 2, kMate},   {"7k/8/5NK1/8/8/8/8/8 w", 1, kNoMate},
        {"8/8/8/8/R7/2k5/8/4K2R w K - 0 1", 5, kMate},  // a quiet key
        {"8/8/pQ6/p1P5/P1p5/5p2/2k2P2/R3K3 w Q - 0 1", 5, kMate},  // a castling key
        {"8/8/pQ6/p1P5/P1p5/5p2/2k2P2/R3K3 w Q - 0 1", 3, kNoMate},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.fen << " in " << c.halfMoves);
        const TChessboard board = Problem(c.fen, c.halfMoves);
        test::CMapStore store;
        TSearchEnvironment env;
        env.store = &store;
        TMateSearch withStore(env);
        EXPECT_EQ(TMateSearch(TSearchEnvironment{}).FindForcedMate(board), c.result);
        EXPECT_EQ(withStore.FindForcedMate(board), c.result);
        EXPECT_TRUE(c.halfMoves < 3 || store.Size() > 0);
        EXPECT_EQ(withStore.FindForcedMate(board), c.result);
    }
}

TEST(FindForcedMate, ShortestMateAndMatingMove) {
    TMateSearch search(TSearchEnvironment{});
    const TChessboard board = Problem("7k/8/5K2/8/8/8/8/6R1 w", 7);
    EXPECT_EQ(search.ShortestMate(board), 3);
    const TMove m = search.MatingMove(board, 3);
    EXPECT_FALSE(m.IsNull());
    EXPECT_TRUE(search.MatingMove(board, 1).IsNull());
}

// A White node is asked for a mate within its half-moves: after the mate in one it searches them
// all at once, and stores the mate with them. Only with 17 half-moves or more, near the start of a
// line, are shorter mates up to the quicker-mate depth looked for first, and stored as such.
TEST(FindForcedMate, ShorterMatesAreLookedForOnlyNearTheStartOfLongLines) {
    const struct {
        int halfMoves;
        int quickerMateDepth;
        int storedWith;
    } cases[] = {{19, 7, 3}, {19, 2, 3}, {19, 1, 19}, {19, 0, 19}, {15, 7, 15}, {5, 7, 5}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.halfMoves << " half-moves, depth " << c.quickerMateDepth);
        const TChessboard board = Problem("7k/8/5K2/8/8/8/8/6R1 w", c.halfMoves);  // mate in 2
        test::CMapStore store;
        TSearchEnvironment env;
        env.store = &store;
        env.quickerMateDepth = c.quickerMateDepth;
        TMateSearch search(env);
        ASSERT_EQ(search.FindForcedMate(board), kMate);
        const TChessboardRegisterItem squares = RegisterItemOf(board);
        EXPECT_EQ(store.LookupSquares(squares, 0, c.storedWith), kMate);
        EXPECT_EQ(store.LookupSquares(squares, 0, c.storedWith - 2), kUnknownResult);
    }
}

TEST(FindForcedMate, RepetitionEndsTheLineWithoutSearchInLongProblems) {
    // The knight's way back repeats the start; the rook's does not (the castling right is gone).
    // clang-format off
    const struct { const char* fen; int halfMoves; const char* moves; uint8_t result; } cases[] = {
        {"4k3/8/8/8/8/8/8/RN2K3 w Q", 11, "Nb1-c3 Ke8-d8 Nc3-b1 Kd8-e8", kRepetition},
        {"4k3/8/8/8/8/8/8/RN2K3 w Q", 9, "Nb1-c3 Ke8-d8 Nc3-b1 Kd8-e8", kNoMate},
        {"4k3/8/8/8/8/8/8/R3K3 w Q", 11, "Ra1-a2 Ke8-d8 Ra2-a1 Kd8-e8", kNoMate},
    };
    // clang-format on
    for (const auto& c : cases) {
        TestLine line(Problem(c.fen, c.halfMoves));
        TMateSearch search(TSearchEnvironment{});
        EXPECT_EQ(search.FindForcedMate(line.PlayLine(c.moves).Now()), c.result) << c.moves << c.halfMoves;
        EXPECT_EQ(search.Nodes() == 1u, c.result == kRepetition);
    }
}

// White's king alone, a lone knight or bishops of one square colour against a bare king (or
// bishops on that colour) can never mate: settled at the node, whatever the budget. Any more
// material leaves the node to the search.
TEST(FindForcedMate, PositionsWithoutAnyMateAreSettledAtOnce) {
    // clang-format off
    const struct { const char* fen; bool dead; } cases[] = {
        {"8/8/8/3k4/3q4/8/8/4K3 w", true},   {"8/8/8/3k4/8/8/8/4KN2 w", true},
        {"8/8/8/3k4/4b3/8/8/4KB2 w", true},  {"8/8/8/3k4/8/7B/8/4KB2 w", true},
        {"8/8/8/3k4/3b4/8/8/4KB2 w", false}, {"8/8/8/3k4/8/8/8/2B1KB2 w", false},
        {"8/8/8/3k4/8/8/8/3NKN2 w", false},  {"8/8/8/3k4/3p4/8/8/4KN2 w", false},
        {"8/8/8/3k4/8/8/8/4KNB1 w", false},  {"8/8/8/3k4/8/8/P7/4K3 w", false},
        {"8/8/8/3k4/3n4/8/8/4KB2 w", false},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fen);
        const TChessboard board = Problem(c.fen, 5);
        EXPECT_EQ(WhiteCannotMate(board), c.dead);
        if (!c.dead) continue;
        TMateSearch search(TSearchEnvironment{});
        EXPECT_EQ(search.FindForcedMate(Problem(c.fen, 41)), kNoMate);
        EXPECT_EQ(search.Nodes(), 1u);
        TSearchEnvironment off;
        off.useGlobalRules = false;
        EXPECT_EQ(TMateSearch(off).FindForcedMate(board), kNoMate);
    }
}

// A trivial rule: every move of the king of one colour makes the line doubtful.
class CKingMustNotMove : public CHeuristicHook {
  public:
    explicit CKingMustNotMove(uint8_t colour) : m_nColour(colour) {}
    uint32_t Check(const TChessboard& after) override {
        return after.squares[after.lastMove.to] == (m_nColour | kKing) ? 0x4u : 0u;
    }

  private:
    uint8_t m_nColour;
};

TEST(FindForcedMate, HeuristicMakesLinesDoubtfulButNeverHidesAMateAtOnce) {
    CKingMustNotMove whiteKing(kWhite), blackKing(kBlack);
    TSearchEnvironment env;
    env.heuristics = &whiteKing;
    TMateSearch search(env);
    // The mate in two needs 1. Kf7: doubtful under the rule.
    EXPECT_EQ(search.FindForcedMate(Problem("7k/8/5K2/8/8/8/8/6R1 w", 3)), kDoubtful);
    EXPECT_EQ(search.DoubtReason(), 0x4u);
    // A king move that mates at once (by discovery) is never stopped.
    EXPECT_EQ(search.FindForcedMate(Problem("6bk/7p/8/4K3/8/8/8/B7 w", 1)), kMate);
    // Nor is it when a thread is handed the position after it (a first move of the levels).
    TestLine line(Problem("6bk/7p/8/4K3/8/8/8/B7 w", 3));
    EXPECT_EQ(search.SearchAfterMove(line.Play("Ke5-f5").Now(), 1), kMate);
    // Black's king moves in the same mate, but 1... Kh7 allows 2. Rh1 mate at once.
    env.heuristics = &blackKing;
    TMateSearch black(env);
    EXPECT_EQ(black.FindForcedMate(Problem("7k/8/5K2/8/8/8/8/6R1 w", 3)), kMate);
}

TEST(FindForcedMate, DoubtfulResultsAreStoredApartFromProofs) {
    CKingMustNotMove rule(kWhite);
    test::CMapStore store;
    TSearchEnvironment env;
    env.heuristics = &rule;
    env.store = &store;
    const TChessboard board = Problem("7k/8/5K2/8/8/8/8/6R1 w", 3);
    TMateSearch search(env);
    EXPECT_EQ(search.FindForcedMate(board), kDoubtful);
    EXPECT_EQ(store.Lookup(board, 3), kDoubtful);
    TMateSearch plain(TSearchEnvironment{});
    EXPECT_EQ(plain.FindForcedMate(board), kMate);
}

// Precalculated data stand-in: settles every position where White has only the king left.
class CBareKingHasNoMate : public CGlobalRegisterHook {
  public:
    bool Settle(const TChessboard& node, uint8_t& result) override {
        ++m_nAsked;
        if (node.whiteQueens + node.whiteRooks + node.whiteBishops + node.whiteKnights + node.whitePawns)
            return false;
        result = kNoMate;
        return true;
    }
    int m_nAsked = 0;
};

TEST(FindForcedMate, GlobalRegisterSettlesNodesWithoutSearch) {
    CBareKingHasNoMate hook;
    TSearchEnvironment env;
    env.useGlobalRules = false;  // they would settle the same nodes
    TMateSearch plain(env);
    env.globalRegister = &hook;
    TMateSearch withHook(env);
    // Black can take the rook at once: those lines end in the hook instead of being searched.
    const TChessboard board = Problem("8/8/8/8/1k6/8/2R5/K7 w", 7);
    EXPECT_EQ(withHook.FindForcedMate(board), plain.FindForcedMate(board));
    EXPECT_GT(hook.m_nAsked, 0);
    EXPECT_LT(withHook.Nodes(), plain.Nodes());
}

TEST(FindForcedMate, StopRequestUnwindsTheSearch) {
    std::atomic<bool> stop{true};
    TSearchEnvironment env;
    env.stop = &stop;
    TMateSearch search(env);
    EXPECT_THROW(search.FindForcedMate(Problem("7k/8/5K2/8/8/8/8/6R1 w", 5)), TSearchStopped);
}

// Two threads search the first moves of one problem against one register, as the multithreading
// levels do; a small register makes them empty it while the other inserts and looks up.
TEST(ConcurrentSearch, SharedRegisterGivesTheSameResultsAsOneThread) {
    const TChessboard root = Problem("B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1", 7);
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

// The search stores under the hash its boards keep of their squares, the register finds by the
// squares alone: every stored position must be found again, after castling, captures, en passant
// and promotions in the lines.
TEST(FindForcedMate, EveryStoredPositionIsFoundByItsSquares) {
    CRunRegister reg(200'000);
    TSearchEnvironment env;
    env.store = &reg;
    TMateSearch search(env);
    search.FindForcedMate(Problem("B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1", 5));
    search.FindForcedMate(Problem("4k3/1P1p4/8/2P5/8/8/3p2p1/4K2R w K - 0 1", 5));
    size_t nStored = 0;
    for (TAggregatedTemporaryChessboardRegister* side : {&reg.WhiteToMove(), &reg.BlackToMove()}) {
        std::vector<TChessboardRegisterItem> keys;
        side->ForEachEntry([&keys](const TChessboardRegisterEntry& entry) { keys.push_back(entry.key); });
        for (const TChessboardRegisterItem& key : keys) EXPECT_TRUE(side->Find(key).has_value());
        nStored += keys.size();
    }
    EXPECT_GT(nStored, 1000u);
}

}  // namespace
}  // namespace moremate
