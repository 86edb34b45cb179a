#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <utility>

#include "engine/search/first_move_order.h"
#include "engine/state/run_control.h"
#include "engine/threads/level_search.h"
#include "tests/engine/map_store.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using TConclusion = std::pair<size_t, uint8_t>;  // a first move's index and its result

// Records the results of the first moves' Black nodes in the order the level search settles
// them: the order in which their analyses end.
class CConclusionStore : public test::CMapStore {
  public:
    CConclusionStore(const TChessboard& root, const std::vector<TMove>& moves)
        : m_nHalfMoves(root.movesLeft - 1) {
        for (const TMove& m : moves) {
            TChessboard child;
            PlayMove(root, m, child);
            m_vChildren.push_back(child);
        }
    }
    void Store(const TChessboard& position, int halfMoves, uint8_t result) override {
        CMapStore::Store(position, halfMoves, result);
        if (halfMoves != m_nHalfMoves) return;
        for (size_t i = 0; i < m_vChildren.size(); ++i) {
            if (std::memcmp(m_vChildren[i].squares, position.squares, 64) != 0) continue;
            std::lock_guard lock(m_mutex);
            m_vConcluded.emplace_back(i, result);
        }
    }
    std::vector<TConclusion> Concluded() const {
        std::lock_guard lock(m_mutex);
        return m_vConcluded;
    }
    size_t Count() const {
        std::lock_guard lock(m_mutex);
        return m_vConcluded.size();
    }

  private:
    int m_nHalfMoves;
    std::vector<TChessboard> m_vChildren;
    mutable std::mutex m_mutex;
    std::vector<TConclusion> m_vConcluded;
};

using FSteer = std::function<void(CRunControl&)>;
using TSteps = std::vector<std::pair<size_t, FSteer>>;  // steering once that many moves concluded

// Steers the run from inside the search, each step at the first move made after its number of
// first moves have concluded: a move is then in progress whatever the threads.
class CSteerAfter : public CHeuristicHook {
  public:
    CSteerAfter(const CConclusionStore& store, CRunControl& control, TSteps steps)
        : m_store(store), m_control(control), m_steps(std::move(steps)) {}
    uint32_t Check(const TChessboard&) override {
        if (m_nNext.load() == m_steps.size()) return 0;
        std::lock_guard lock(m_mutex);
        const size_t next = m_nNext.load();
        if (next == m_steps.size() || m_store.Count() < m_steps[next].first) return 0;
        ++m_nNext;
        m_steps[next].second(m_control);
        return 0;
    }

  private:
    const CConclusionStore& m_store;
    CRunControl& m_control;
    TSteps m_steps;
    std::atomic<size_t> m_nNext{0};
    std::mutex m_mutex;
};

struct TRound {
    std::vector<TMove> moves;
    std::vector<uint8_t> results;  // by index, as the level search returns them
    std::vector<TConclusion> concluded;
};

// All first moves of `problem` at its full length on `threads` threads, steered by `steer`.
TRound SearchRound(const test::TSharedDirectmate& problem, size_t threads, TSteps steps = {}) {
    const TChessboard root = test::Directmate(problem.fen, problem.moves);
    TRound round;
    round.moves = FirstMoveOrder(root, {});
    CConclusionStore store(root, round.moves);
    CRunControl control;
    CSteerAfter hook(store, control, std::move(steps));
    TSearchEnvironment env;
    env.store = &store;
    env.control = &control;
    env.heuristics = &hook;
    std::vector<TMateSearch> searches(threads, TMateSearch(env));
    CSchedulerGate gate(threads);
    CLevelSearch levels(searches, root, round.moves, TLevelContext{}, nullptr, gate);
    round.results = levels.Search(root.movesLeft, SIZE_MAX);
    round.concluded = store.Concluded();
    EXPECT_FALSE(control.MoveToEnd());  // the round is over: nothing to steer
    EXPECT_TRUE(control.WaitingFirstMoves().empty());
    return round;
}

std::vector<test::TSharedDirectmate> Problems() {
    std::vector<test::TSharedDirectmate> problems = test::SharedDirectmates(3, 3);
    problems.resize(std::min<size_t>(problems.size(), 4));
    return problems;
}

std::vector<size_t> Order(const std::vector<TConclusion>& concluded) {
    std::vector<size_t> order;
    for (const auto& [index, result] : concluded) order.push_back(index);
    return order;
}

// Moved to the end or swapped with the next, the move being analysed is searched again from its
// start later: every first move keeps its result (keys, refutations, doubtful ones), and on one
// thread the analyses end in the order asked for.
TEST(ConcurrentLevelSteering, MoveToEndAndSwapChangeTheOrderButNoResult) {
    const FSteer toEnd = [](CRunControl& control) { EXPECT_TRUE(control.MoveToEnd()); };
    const FSteer swap = [](CRunControl& control) { EXPECT_TRUE(control.SwapWithNext()); };
    constexpr size_t kAfter = 1;
    for (const test::TSharedDirectmate& problem : Problems()) {
        const TRound plain = SearchRound(problem, 1);
        ASSERT_GE(plain.concluded.size(), 4u) << problem.fen;
        for (const size_t threads : {1, 2, 3}) {
            const TRound moved = SearchRound(problem, threads, {{kAfter, toEnd}});
            const TRound swapped = SearchRound(problem, threads, {{kAfter, swap}});
            EXPECT_EQ(moved.results, plain.results) << problem.fen << " threads " << threads;
            EXPECT_EQ(swapped.results, plain.results) << problem.fen << " threads " << threads;
            if (threads > 1) continue;
            std::vector<size_t> expected = Order(plain.concluded);
            std::rotate(expected.begin() + kAfter, expected.begin() + kAfter + 1, expected.end());
            EXPECT_EQ(Order(moved.concluded), expected) << problem.fen;
            expected = Order(plain.concluded);
            std::swap(expected[kAfter], expected[kAfter + 1]);
            EXPECT_EQ(Order(swapped.concluded), expected) << problem.fen;
        }
    }
}

// Once the move moved to the end is analysed again, nothing waits: no change can be made, and
// the progress counts the moves concluded, not those before the lowest index in progress.
TEST(ConcurrentLevelSteering, NothingWaitingRefusesEveryChange) {
    const test::TSharedDirectmate problem = Problems().front();
    const TRound plain = SearchRound(problem, 1);
    const size_t last = plain.concluded.size() - 1;
    const auto atTheEnd = [&plain, last](CRunControl& control) {
        EXPECT_TRUE(control.WaitingFirstMoves().empty());
        EXPECT_FALSE(control.MoveToEnd());
        EXPECT_FALSE(control.SwapWithNext());
        EXPECT_FALSE(control.SkipTo(plain.moves.front()));
        EXPECT_GE(control.Pass().percent,
                  100.0 * static_cast<double>(last) / static_cast<double>(plain.moves.size()));
    };
    const TRound moved =
        SearchRound(problem, 1, {{1, [](CRunControl& control) { control.MoveToEnd(); }}, {last, atTheEnd}});
    EXPECT_EQ(moved.results, plain.results);
    EXPECT_EQ(moved.concluded.back().first, plain.concluded[1].first);
}

// Skipping two moves after a swap skips the move under analysis and the one that comes next in
// the changed order, not the next by index.
TEST(ConcurrentLevelSteering, SkipFollowsTheOrderOfAnalysis) {
    const test::TSharedDirectmate problem = Problems().front();
    const TRound plain = SearchRound(problem, 1);
    ASSERT_GE(plain.concluded.size(), 5u);
    const TRound skipped =
        SearchRound(problem, 1,
                    {{1, [](CRunControl& control) { EXPECT_TRUE(control.SwapWithNext()); }},
                     {2, [](CRunControl& control) { EXPECT_TRUE(control.Skip(2)); }}});
    const std::vector<TConclusion>& was = plain.concluded;
    ASSERT_GE(skipped.concluded.size(), 4u);
    EXPECT_EQ(skipped.concluded[1], was[2]);
    EXPECT_EQ(skipped.concluded[2], TConclusion(was[1].first, kDoubtful));
    EXPECT_EQ(skipped.concluded[3], TConclusion(was[3].first, kDoubtful));
    EXPECT_EQ(skipped.concluded[4], was[4]);
}

// Skipping to a chosen waiting move ends the current one as not proven, and the chosen one is
// analysed next; the others keep their results.
TEST(ConcurrentLevelSteering, SkipToReachesTheChosenMove) {
    for (const test::TSharedDirectmate& problem : Problems()) {
        const TRound plain = SearchRound(problem, 1);
        TMove chosen;
        const auto skipToLast = [&chosen](CRunControl& control) {
            const std::vector<TWaitingMove> waiting = control.WaitingFirstMoves();
            ASSERT_GE(waiting.size(), 2u);
            chosen = waiting.back().move;
            EXPECT_FALSE(waiting.back().text.empty());
            EXPECT_TRUE(control.SkipTo(chosen));
            EXPECT_EQ(control.WaitingFirstMoves().front().move, chosen);
        };
        const TRound skipped = SearchRound(problem, 1, {{1, skipToLast}});
        ASSERT_GE(skipped.concluded.size(), 3u) << problem.fen;
        const size_t current = plain.concluded[1].first;
        EXPECT_EQ(skipped.concluded[1], TConclusion(current, kDoubtful)) << problem.fen;
        EXPECT_EQ(skipped.moves[skipped.concluded[2].first], chosen) << problem.fen;
        std::vector<uint8_t> expected = plain.results;
        expected[current] = kDoubtful;
        EXPECT_EQ(skipped.results, expected) << problem.fen;
    }
}

}  // namespace
}  // namespace moremate
