#include "engine/passes/solver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "core/movegen.h"
#include "core/notation.h"
#include "engine/heuristics/heuristic_names.h"
#include "engine/passes/pass_threads.h"
#include "engine/state/thread_counters.h"
#include "engine/threads/multithreading_levels.h"
#include "engine/threads/scheduler.h"
#include "settings/machine.h"
#include "tests/engine/map_store.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

struct SolveCase {
    const char* fen;
    int moves;
    std::vector<std::string> keys;  // every key, sorted
};

// Directmates with their complete sets of keys (cooks included), proven by an independent solver.
// clang-format off
const SolveCase kCases[] = {
    {"8/Q7/8/8/8/8/8/2k1K2R w K - 0 1", 2, {"Qa7-f2"}}, {"8/8/8/8/R7/2k5/8/4K2R w K - 0 1", 3, {"Rh1-h3"}},
    {"8/8/pQ6/p1P5/P1p5/5p2/2k2P2/R3K3 w Q - 0 1", 3, {"Qb6-f6"}},
    {"8/8/8/8/P7/3PQ3/3K4/k7 w", 3, {"Kd2-c1", "Kd2-c2", "Kd2-c3", "Qe3-b6"}},
    {"6r1/3p3P/8/2B5/8/2K5/8/2k5 w", 4, {"h7:g8Q", "h7:g8R"}}, {"8/7P/p7/6B1/5K2/8/8/6k1 w", 4, {"Kf4-f3", "h7-h8Q"}},
    {"8/7P/p7/6B1/5K2/8/8/6k1 w", 3, {}}, {"8/8/Q7/8/2K5/5P2/8/2k5 w", 2, {}},
};
// clang-format on

std::vector<std::string> KeyTexts(const TChessboard& root, const TSolveResult& r) {
    std::vector<std::string> keys;
    for (const TKey& k : r.keys) keys.push_back(MoveToText(root, k.move));
    std::sort(keys.begin(), keys.end());
    return keys;
}

TSolveRequest Request(const char* fen, int moves, CPositionStore* store = nullptr) {
    TSolveRequest request;
    request.position = test::Directmate(fen, moves);
    request.allSolutions = true;
    request.environment.store = store;
    return request;
}

TEST(Solve, AllSolutionsFindsEveryKeyWithAMainLineEndingInMate) {
    for (const SolveCase& c : kCases) {
        test::CMapStore store;
        const TSolveRequest request = Request(c.fen, c.moves, &store);
        const TSolveResult r = Solve(request, nullptr);
        EXPECT_EQ(KeyTexts(request.position, r), c.keys) << c.fen;
        EXPECT_EQ(r.result, c.keys.empty() ? kNoMate : kMate) << c.fen;
        for (const TKey& key : r.keys) {
            ASSERT_FALSE(key.mainLine.empty());
            EXPECT_EQ(key.mainLine.front(), key.move);
            EXPECT_LE(static_cast<int>(key.mainLine.size()), 2 * c.moves - 1);
            const std::string line = SolutionLine(request.position, key.mainLine);
            EXPECT_EQ(line.substr(line.size() - 2), "+ ") << line;
        }
    }
}

std::vector<std::string> MainLines(const TChessboard& root, const TSolveResult& r) {
    std::vector<std::string> lines;
    for (const TKey& k : r.keys) lines.push_back(SolutionLine(root, k.mainLine));
    std::sort(lines.begin(), lines.end());
    return lines;
}

// Threads per level and levels (including more threads than first moves, and more threads than
// the machine has) change neither the keys nor their main lines.
TEST(Solve, ThreadsAndLevelsChangeNoResult) {
    const std::pair<int, int> kThreadSettings[] = {{1, 1}, {2, 1}, {3, 2}, {8, 1}, {4, 0}};
    for (const SolveCase& c : kCases) {
        for (const bool all : {true, false}) {
            std::vector<std::string> keys[2], lines[2];
            for (const auto& [threads, levels] : kThreadSettings) {
                test::CMapStore store;
                TSolveRequest request = Request(c.fen, c.moves, &store);
                request.allSolutions = all;
                request.threads = threads;
                request.levels = levels;
                const TSolveResult r = Solve(request, nullptr);
                const bool first = threads == 1;
                keys[first ? 0 : 1] = KeyTexts(request.position, r);
                lines[first ? 0 : 1] = MainLines(request.position, r);
                if (first) continue;
                EXPECT_EQ(keys[0], keys[1]) << c.fen << " threads " << threads << "^" << levels;
                EXPECT_EQ(lines[0], lines[1]) << c.fen << " threads " << threads << "^" << levels;
            }
        }
    }
}

TEST(Solve, TimeLimitAndStopEndTheRun) {
    std::atomic<bool> stop{true};
    const TSolveResult r = Solve(Request(kCases[2].fen, 3), &stop);
    EXPECT_TRUE(r.stopped);
    EXPECT_TRUE(r.keys.empty());
}

TEST(MultithreadingLevels, MainThreadsAreTToTheLAndNoMoreThanTheMovesKeepBusy) {
    // Fewer moves than threads; each move keeps T threads of the next level busy; levels off.
    // clang-format off
    const struct { TThreadSettings levels; size_t moves, threads; } cases[] = {
        {{4, 1}, 30, 4}, {{4, 1}, 2, 2}, {{4, 2}, 30, 16}, {{4, 2}, 3, 12}, {{4, 0}, 30, 1}, {{4, 1}, 0, 1},
        {{64, 3}, 5000, kMaxMainThreads},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(MainThreadsFor(c.levels, c.moves), c.threads) << c.moves;
    EXPECT_EQ(QuickMateDepthPlies(5), 9);
    EXPECT_EQ(QuickMateDepthPlies(6), 11);
    EXPECT_EQ(QuickMateDepthPlies(0), kDefaultQuickMateDepthPlies);
    EXPECT_EQ(ThreadsText("", 4, 1), " 4thrd(s)");
    EXPECT_EQ(ThreadsText("SnglSolution,", 4, 2), "SnglSolution, 4^2thrd(s)");
    EXPECT_EQ(ThreadsText("AllSolutions,", 12, 0), "AllSolutions,12thrd(s)");
}

// The twelve variants give one result; anything outside them is refused.
TEST(MultithreadingLevels, DispatchRunsTheTwelveVariantsAndRefusesOthers) {
    const TChessboard root = test::Directmate(kCases[0].fen, 2);
    TLevelTask task;
    task.board = root;
    TMateSearch search(TSearchEnvironment{});
    for (const int16_t depth : {int16_t{9}, int16_t{11}, kDefaultQuickMateDepthPlies})
        for (const uint8_t exceptions : {0, 1})
            for (const uint8_t verify : {0, 1}) {
                const TLevelContext context{depth, exceptions, verify};
                EXPECT_EQ(FindMateMultithreadingLevelThreadProcFFM(task, search, context), kMate) << depth;
            }
    const std::string prefix = "Error: no implementation in FindMateMultithreadingLevelThreadProcFFM for ";
    auto errorOf = [&](const TLevelContext& context) {
        return test::ErrorOf([&] { FindMateMultithreadingLevelThreadProcFFM(task, search, context); });
    };
    EXPECT_EQ(errorOf({13, 1, 1}), prefix + "m_shLookForQuickerMateDepth");  // #7
    EXPECT_EQ(errorOf({9, 2, 1}), prefix + "bAllowExceptions");
    EXPECT_EQ(errorOf({9, 1, 2}), prefix + "VerifyHeuristics");
    task.m_byVariant = kMaxTaskVariant + 1;
    EXPECT_EQ(errorOf({9, 1, 1}), prefix + "bAllowExceptions");
}

TEST(MultithreadingLevels, PassThreadsFollowTheRunTheHeuristicsAndTheHybridPhase) {
    TRunThreads run;
    run.threads = 1;
    run.levels = 2;
    run.scheduler.levels = 6;
    TPassState state;
    state.set.mask = SH_FINDFORCEDMATE;
    state.set.params.quickMateDepth = 5;
    TSolveRequest pass;
    ConfigurePassThreads(pass, run, state, kNotHybrid, false);
    EXPECT_EQ(pass.threads, 1);
    EXPECT_EQ(pass.levels, 2);
    EXPECT_EQ(pass.levelContext.m_shLookForQuickerMateDepth, 9);
    EXPECT_EQ(pass.levelContext.m_byVariant, 0);  // no scheduler while SH_FINDFORCEDMATE is in force
    EXPECT_TRUE(pass.levelContext.m_bForcedMatePass);
    EXPECT_EQ(pass.processors, static_cast<int>(LogicalProcessorCount()));
    state.set.mask = SH_KEEPKINGONTHEEDGE;
    ConfigurePassThreads(pass, run, state, kHybridFirstPhase, false);
    EXPECT_EQ(pass.levelContext.m_byVariant, 6);
    EXPECT_EQ(pass.levelContext.m_byPhase, kHybridFirstPhase);

    const int processors = static_cast<int>(LogicalProcessorCount());
    const int spawnedBefore = g_nAdditionalThreadsSpawned.load();
    ConfigurePassThreads(pass, run, state, kNotHybrid, true);  // the one heuristic pass
    EXPECT_EQ(pass.threads, processors);
    EXPECT_EQ(g_nAdditionalThreadsSpawned.load() - spawnedBefore, processors - 1);
    ConfigurePassThreads(pass, run, state, kHybridSecondPhase, false);
    EXPECT_EQ(pass.threads, processors);
    EXPECT_EQ(pass.levelContext.m_shLookForQuickerMateDepth, kDefaultQuickMateDepthPlies);
    EXPECT_EQ(pass.levelContext.m_byVariant, 0);
}

TEST(MultithreadingLevels, SchedulerJugglesMovesBelowTheLevelsUpToItsOwn) {
    TSchedulerSettings settings;
    settings.levels = 6;
    const TJuggledMoves juggled = JuggledMoves(settings, 2, 0, false);
    EXPECT_EQ(juggled.first, 3);
    EXPECT_EQ(juggled.last, 6);
    EXPECT_TRUE(JuggledMoves(settings, 2, SH_FINDFORCEDMATE, false).Empty());
    EXPECT_TRUE(JuggledMoves(settings, 2, 0, true).Empty());
    EXPECT_TRUE(JuggledMoves(settings, 6, 0, false).Empty());
    settings.levels = 0;
    EXPECT_TRUE(JuggledMoves(settings, 1, 0, false).Empty());

    TOptions options;
    EXPECT_EQ(SchedulerSettingsForRun(options, 15).levels, 0);
    EXPECT_EQ(SchedulerSettingsForRun(options, 27).levels, 6);
    EXPECT_TRUE(SchedulerSettingsForRun(options, 27).custom);
    options.m_nSchedulerLevels = 0;
    EXPECT_FALSE(SchedulerSettingsForRun(options, 27).custom);

    CSchedulerGate gate(2);
    gate.Enter();  // a main thread
    EXPECT_TRUE(gate.TryEnter());
    EXPECT_FALSE(gate.TryEnter());
    gate.Leave();
    EXPECT_TRUE(gate.TryEnter());
    gate.Enter();  // main threads enter whatever the count
    EXPECT_EQ(gate.Active(), 3u);
}

// The first moves other than the case's first key: a solve that leaves them out has one main thread.
std::vector<TMove> AllButTheFirstKey(const TChessboard& root, const SolveCase& c) {
    TMoveList moves;
    GenerateLegalMoves(root, moves);
    std::vector<TMove> others;
    for (const TMove& m : moves)
        if (MoveToText(root, m) != c.keys.front()) others.push_back(m);
    return others;
}

// The scheduler lends the slots that no main thread holds (here the second: a single first move is
// left to search, so that a loan does not hang on the moment a main thread runs out of work) to the
// moves sorted second; what its helpers find only fills the register, so keys and main lines stay
// the same.
TEST(SolveScheduler, LoansChangeNoResult) {
    const SolveCase* kSolveCases[] = {&kCases[5], &kCases[2]};
    const int spawnedBefore = g_nAdditionalThreadsSpawned.load();
    for (const SolveCase* c : kSolveCases) {
        const char* fen = c->fen;
        std::vector<TMove> keys[2];
        for (const bool juggling : {false, true}) {
            for (const bool pool : {false, true}) {
                test::CMapStore store;
                TSolveRequest request = Request(fen, 4, &store);
                request.knownKeys = AllButTheFirstKey(request.position, *c);
                request.threads = 2;
                if (juggling) request.juggled = {2, 4};
                request.scheduler.threadPool = pool;
                request.scheduler.sameMoveInTwoThreads = pool;
                const TSolveResult r = Solve(request, nullptr);
                std::vector<TMove>& found = keys[juggling ? 1 : 0];
                found.clear();
                for (const TKey& key : r.keys)
                    found.insert(found.end(), key.mainLine.begin(), key.mainLine.end());
            }
        }
        EXPECT_EQ(keys[0], keys[1]) << fen;
    }
    EXPECT_GT(g_nAdditionalThreadsSpawned.load(), spawnedBefore);
    EXPECT_EQ(g_nMainThreadsRunning.load(), 0);
}

// A level thread waits for its task, runs it and publishes the result; a withdrawn task is
// skipped; a request left pending is reset unless it reached its final state.
TEST(ConcurrentLevelThread, WaitsForTheHandOverAndSkipsWithdrawnTasks) {
    const TChessboard root = test::Directmate(kCases[0].fen, 2);
    TLevelRun run;
    run.m_bRequestPending = true;
    run.m_byRequestState = 2;
    TLevelTask task;
    uint8_t result = kUnknownResult;
    std::thread thread([&] {
        TMateSearch search(TSearchEnvironment{});
        result = RunLevelThread(task, search, TLevelContext{}, run);
    });
    task.board = root;
    task.m_byState = kTaskHandedOver;
    thread.join();
    EXPECT_EQ(result, kMate);
    EXPECT_EQ(task.m_byResult.load(), kMate);
    EXPECT_EQ(task.m_byState.load(), kTaskDone);
    EXPECT_EQ(run.m_pRoot.load(), &task.board);
    EXPECT_FALSE(run.m_bRequestPending.load());
    EXPECT_EQ(run.m_byRequestState.load(), 0);

    TLevelTask withdrawn;
    withdrawn.m_byState = kTaskWithdrawn;
    run.m_bRequestPending = true;
    run.m_byRequestState = 3;
    run.m_nRequestCounter = 65535;
    TMateSearch search(TSearchEnvironment{});
    EXPECT_EQ(RunLevelThread(withdrawn, search, TLevelContext{}, run), kUnknownResult);
    EXPECT_EQ(withdrawn.m_byState.load(), kTaskWithdrawn);
    task.m_byState = kTaskHandedOver;
    RunLevelThread(task, search, TLevelContext{}, run);
    EXPECT_TRUE(run.m_bRequestPending.load());  // final state: kept
    EXPECT_EQ(g_nMainThreadsRunning.load(), 0);
}

// Raises the stop flag from inside the search once it is well under way on every thread.
class CStopAfter : public CHeuristicHook {
  public:
    CStopAfter(std::atomic<bool>& stop, int checks) : m_stop(stop), m_nLeft(checks) {}
    uint32_t Check(const TChessboard&) override {
        if (--m_nLeft == 0) m_stop = true;
        return 0;
    }

  private:
    std::atomic<bool>& m_stop;
    std::atomic<int> m_nLeft;
};

TEST(SolveLevels, StopDuringAMultithreadedPassEndsEveryThread) {
    for (const int levels : {1, 2}) {
        std::atomic<bool> stop{false};
        CStopAfter hook(stop, 3000);
        test::CMapStore store;
        TSolveRequest request = Request(kCases[2].fen, 5, &store);
        request.threads = 3;
        request.levels = levels;
        request.environment.heuristics = &hook;
        const TSolveResult r = Solve(request, &stop);
        EXPECT_TRUE(r.stopped) << levels;
        EXPECT_EQ(g_nMainThreadsRunning.load(), 0);
        EXPECT_EQ(g_nMainThreadsRunningExclMTLThreads.load(), 0);
    }
}

}  // namespace
}  // namespace moremate
