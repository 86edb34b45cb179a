#include "engine/state/run_control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <thread>

#include "engine/heuristics/heuristic_names.h"
#include "engine/passes/run_register.h"
#include "engine/passes/solver.h"
#include "engine/run/progress_tick.h"
#include "engine/search/observed_lines.h"
#include "engine/search/search_log.h"
#include "engine/state/search_result.h"
#include "engine/state/solving_run.h"
#include "tests/support/positions.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

constexpr const char* kMateInFour = "B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1";

TSolveRequest AllSolutions(CRunRegister& reg, CRunControl& control) {
    TSolveRequest request;
    request.position = test::Problem(kMateInFour, 7);
    request.allSolutions = true;
    request.threads = 2;
    request.environment.store = &reg;
    request.environment.control = &control;
    return request;
}

std::vector<TMove> Keys(const TSolveResult& result) {
    std::vector<TMove> keys;
    for (const TKey& key : result.keys) keys.push_back(key.move);
    return keys;
}

void WaitUntilHeld(const CRunControl& control, int threads) {
    while (control.HeldThreads() < threads) std::this_thread::yield();
}

// Paused before it starts, a run holds each of its search threads at the first node they reach.
TEST(ConcurrentRunControl, PauseHoldsEverySearchThreadUntilResumeOrStop) {
    CRunRegister freeRegister(20'000), heldRegister(20'000), stoppedRegister(20'000);
    CRunControl free, held, stopped;
    const TSolveResult expected = Solve(AllSolutions(freeRegister, free), free.StopFlag());
    ASSERT_EQ(expected.keys.size(), 1u);

    held.Pause();
    TSolveResult resumed;
    std::thread run([&] { resumed = Solve(AllSolutions(heldRegister, held), held.StopFlag()); });
    WaitUntilHeld(held, 2);
    held.Resume();
    run.join();
    EXPECT_FALSE(resumed.stopped);
    EXPECT_EQ(Keys(resumed), Keys(expected));

    stopped.Pause();
    TSolveResult ended;
    {
        const CSolvingRunScope run(5, false);
        std::thread stoppedRun(
            [&] { ended = Solve(AllSolutions(stoppedRegister, stopped), stopped.StopFlag()); });
        WaitUntilHeld(stopped, 2);
        stopped.Stop();
        stoppedRun.join();
        const std::string state = RunStateReport();
        EXPECT_NE(state.find("g_bStopPending=1\n"), std::string::npos) << state;
        EXPECT_NE(state.find("setProblemsBeingStoppedIds=1\n"), std::string::npos) << state;
    }
    EXPECT_NE(RunStateReport().find("g_bStopPending=0\n"), std::string::npos);
    EXPECT_TRUE(ended.stopped);
    EXPECT_TRUE(stopped.StoppedByUser());
    EXPECT_FALSE(free.StoppedByUser());
}

// Holding one thread leaves the other searching; the resume lets the held one go on.
TEST(ConcurrentRunControl, HoldOneThreadHoldsASingleThreadUntilResume) {
    CRunRegister freeRegister(20'000), heldRegister(20'000);
    CRunControl free, held;
    const TSolveResult expected = Solve(AllSolutions(freeRegister, free), free.StopFlag());
    held.HoldOneThread();
    TSolveResult resumed;
    std::thread run([&] { resumed = Solve(AllSolutions(heldRegister, held), held.StopFlag()); });
    WaitUntilHeld(held, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(held.HeldThreads(), 1);
    EXPECT_FALSE(held.Paused());
    held.Resume();
    run.join();
    EXPECT_FALSE(resumed.stopped);
    EXPECT_EQ(Keys(resumed), Keys(expected));
}

// A skip ends the first move being analysed, as not proven, and the others are searched as ever.
TEST(ConcurrentRunControl, SkipEndsTheMoveBeingAnalysedAndGoesOnWithTheNext) {
    const TChessboard root = test::Problem(kMateInFour, 7);
    TMoveList moves;
    GenerateLegalMoves(root, moves);
    const auto results = [&](CRunControl* control) {
        CRunRegister reg(20'000);
        TSearchEnvironment env;
        env.store = &reg;
        env.control = control;
        TMateSearch search(env);
        std::vector<uint8_t> out;
        if (control) control->FirstMovesStarted(static_cast<size_t>(moves.count));
        for (int i = 0; i < moves.count; ++i) {
            TChessboard child;
            PlayMove(root, moves.moves[i], child);
            const auto find = [&] { return search.FindForcedMate(child); };
            out.push_back(control ? control->AnalyseFirstMove(static_cast<size_t>(i), find) : find());
        }
        return out;
    };
    const std::vector<uint8_t> expected = results(nullptr);

    CRunControl control;
    EXPECT_FALSE(control.Skip());  // nothing analysed yet: the engine cannot take it
    control.Pause();
    std::vector<uint8_t> skipped;
    std::thread run([&] { skipped = results(&control); });
    WaitUntilHeld(control, 1);
    EXPECT_TRUE(control.Skip());
    EXPECT_FALSE(control.Skip());  // the only move being analysed is skipped already
    control.Resume();
    run.join();
    ASSERT_EQ(skipped.size(), expected.size());
    EXPECT_EQ(skipped[0], kDoubtful);
    EXPECT_EQ(std::vector<uint8_t>(skipped.begin() + 1, skipped.end()),
              std::vector<uint8_t>(expected.begin() + 1, expected.end()));
    EXPECT_EQ(control.Pass().percent, 100.0);
    EXPECT_FALSE(control.Skip());
    // A later part of the skipped move (a defence another thread takes) is not searched; the next
    // round of first moves searches the move again.
    const auto mate = [] { return uint8_t{kMate}; };
    EXPECT_EQ(control.AnalyseFirstMove(0, mate), kDoubtful);
    control.FirstMovesStarted(static_cast<size_t>(moves.count));
    EXPECT_EQ(control.AnalyseFirstMove(0, mate), kMate);
    // Skipping three moves from the one being analysed: the next two are skipped when they begin.
    const auto skipThree = [&] { return control.Skip(3) ? uint8_t{kMate} : uint8_t{kNoMate}; };
    EXPECT_EQ(control.AnalyseFirstMove(2, skipThree), kMate);
    for (size_t i : {3, 4}) EXPECT_EQ(control.AnalyseFirstMove(i, mate), kDoubtful) << i;
    EXPECT_EQ(control.AnalyseFirstMove(5, mate), kMate);
}

TEST(ConcurrentProgressTick, TicksCarryThePassUnderWayUntilStopped) {
    CRunControl control;
    std::atomic<uint64_t> nodes{12345};
    std::mutex mutex;
    std::condition_variable ticked;
    std::vector<TRunProgress> ticks;
    const auto count = [&] {
        std::lock_guard lock(mutex);
        return ticks.size();
    };
    const auto waitFor = [&](size_t n) {
        std::unique_lock lock(mutex);
        ticked.wait(lock, [&] { return ticks.size() >= n; });
    };
    CProgressTick tick(
        TProgressSources{&control, &nodes, nullptr, [] { return std::string("2 threads"); }},
        [&](const TRunProgress& progress) {
            {
                std::lock_guard lock(mutex);
                ticks.push_back(progress);
            }
            ticked.notify_all();
        },
        std::chrono::milliseconds(1));
    waitFor(1);
    control.PassStarted(1, "b", 0x10);
    waitFor(count() + 2);  // the tick under way may have read the progress before the pass started
    tick.Stop();
    const size_t stoppedAt = count();
    tick.Stop();
    EXPECT_EQ(count(), stoppedAt);
    EXPECT_EQ(ticks.front().passStatus, "Initial position type check...");
    EXPECT_EQ(ticks.back().passStatus, "Pass 1b, 0.0% 12345 SH:10h,TR:0(0)");
    EXPECT_EQ(ticks.back().nodes, 12345u);
    EXPECT_EQ(ticks.back().threadFigures, "2 threads");
    for (size_t i = 1; i < ticks.size(); ++i) EXPECT_LE(ticks[i - 1].elapsed, ticks[i].elapsed);
}

TEST(SolvingRun, SchedulerLevelsFollowTheDepth) {
    const struct {
        int setting, depth;
        bool secondKind;
        int levels;
    } cases[] = {
        {6, 15, false, 0}, {6, 16, false, 0}, {6, 17, false, 1}, {6, 27, false, 6}, {6, 41, false, 6},
        {2, 27, false, 2}, {6, 17, true, 0},  {6, 19, true, 1},  {6, 29, true, 6},
    };
    for (const auto& c : cases)
        EXPECT_EQ(SchedulerLevelsForRun(c.setting, c.depth, c.secondKind), c.levels) << c.depth;
}

TEST(SolvingRun, StateReportFollowsRunningProblems) {
    {
        const CSolvingRunScope first(11, true), second(12, false);
        const std::string report = RunStateReport();
        EXPECT_NE(report.find("g_bRunning=1\n"), std::string::npos) << report;
        EXPECT_NE(report.find("setRunningProblemsIds=2\n"), std::string::npos) << report;
        EXPECT_NE(report.find("EngineThreadProc_BlackMoves_pending=0\n"), std::string::npos) << report;
        EXPECT_NE(report.find("g_nMainThreadsRunning=0\n"), std::string::npos) << report;
    }
    const std::string after = RunStateReport();
    EXPECT_NE(after.find("g_bRunning=0\n"), std::string::npos) << after;
    EXPECT_NE(after.find("setRunningProblemsIds=0\n"), std::string::npos) << after;
}

TMove White(const std::string& text) {
    return ParseFullDescription(text, true);
}

// A White move replaces the rest of the line below it; moves below the observed ones are not shown.
TEST(ObservedLines, WhiteMoveReplacesTheLineBelowIt) {
    const TChessboard root = test::Problem(kMateInFour, 7);
    CObservedLines lines(1, 3);
    EXPECT_EQ(lines.Slot(1), nullptr);
    CObservedLine line;
    line.Attach(lines.Slot(0), lines.Moves());
    line.FirstMove(root, White("Qa4:b5"));
    line.From(1);
    line.AtWhiteMove(1, root, White("Ra1-a7"));
    line.AtWhiteMove(3, root, White("0-0-0"));
    line.AtWhiteMove(5, root, White("Ke1-e2"));
    EXPECT_EQ(lines.Text(), "Observed: 1.Qa4:b5 2.Ra1-a7 3.0-0-0");
    line.AtWhiteMove(1, root, White("Ra1-d1"));
    EXPECT_EQ(lines.Text(), "Observed: 1.Qa4:b5 2.Ra1-d1");
    line.FirstMove(root, White("Ke1-d2"));
    line.AtWhiteMove(1, root, White("Ra1-a7"));  // no search below the new first move has started
    EXPECT_EQ(lines.Text(), "Observed: 1.Ke1-d2");
    line.Clear();
    EXPECT_EQ(lines.Text(), "");
}

// Held by a pause, each search thread shows its line: a first move of the position, then White's
// moves below it, no more than the levels and observer levels, and none once the run has ended.
TEST(ConcurrentObservedLines, PausedThreadsShowTheirWhiteLines) {
    const TChessboard root = test::Problem(kMateInFour, 7);
    constexpr size_t kMoves = 3;  // one level, two observer levels
    CObservedLines observed(2, kMoves);
    CRunRegister reg(20'000);
    CRunControl control;
    std::atomic<uint64_t> nodes{0};
    TSolveRequest request = AllSolutions(reg, control);
    request.environment.progressNodes = &nodes;
    request.environment.observed = &observed;
    std::atomic<bool> done{false};
    TSolveResult result;
    std::thread run([&] {
        result = Solve(request, control.StopFlag());
        done = true;
    });
    // Held at a node of a shallow ply, a thread shows a shorter line, and a thread between two
    // rounds of first moves (or lending its place to the scheduler at the end of one) shows none:
    // look a few times, well into the search, until both threads show a line and one a whole one.
    std::vector<std::vector<TObservedMove>> lines;
    bool held = false;
    const auto seen = [&lines] {
        return lines.size() == 2 && std::any_of(lines.begin(), lines.end(),
                                                [](const auto& line) { return line.size() == kMoves; });
    };
    for (int look = 1; look <= 12 && !done && !seen(); ++look) {
        while (nodes.load() < 4096u * static_cast<uint64_t>(look) && !done) std::this_thread::yield();
        control.Pause();
        while (control.HeldThreads() < 2 && !done) std::this_thread::yield();
        if (control.HeldThreads() == 2) {  // both stay held until the resume
            held = true;
            lines = observed.Lines();
        }
        control.Resume();
    }
    run.join();

    ASSERT_TRUE(held) << "the run ended before both threads were held";
    ASSERT_EQ(result.keys.size(), 1u);
    EXPECT_TRUE(observed.Lines().empty());
    TMoveList firstMoves;
    GenerateLegalMoves(root, firstMoves);
    EXPECT_EQ(lines.size(), 2u);
    size_t full = 0;
    for (const std::vector<TObservedMove>& line : lines) {
        ASSERT_FALSE(line.empty());
        EXPECT_LE(line.size(), kMoves);
        const TObservedMove& first = line.front();
        EXPECT_NE(std::find(firstMoves.begin(), firstMoves.end(), first.move), firstMoves.end());
        EXPECT_EQ(first.piece, root.squares[first.move.from]);
        for (const TObservedMove& m : line) EXPECT_EQ(ColourOf(m.piece), kWhite);
        full += line.size() == kMoves;
    }
    EXPECT_GT(full, 0u);  // nearly every node lies below the observed plies
}

TEST(SearchLog, NodeLinesAndTheirLimit) {
    testing::CTempFolder folder;
    {
        CSearchLog log(folder.Path().string(), 7, 1);
        const TMove e2e4{12, 28, 0};
        log.Result(1, e2e4, kMate, 0);
        log.Result(4, e2e4, kNoMate, 0);
        log.Result(2, e2e4, kDoubtful, SH_KEEPKINGONTHEEDGE);
        log.Result(3, e2e4, kDoubtful, 0xFFFFFFFFu);
        log.Result(600, e2e4, kNoMate, 0);
        log.Result(601, e2e4, kNoMate, 0);
    }
    const std::string text = folder.Read("MovesLogger_problem7_thr1.log");
    EXPECT_NE(text.find("\t1. e2-e4 mate\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\t\t\t\t2 ... e2-e4 no mate\n"), std::string::npos) << text;
    EXPECT_NE(text.find("1 ... e2-e4 doubtful (SH_KEEPKINGONTHEEDGE)\n"), std::string::npos) << text;
    EXPECT_NE(text.find("2. e2-e4 doubtful (4294967295 (temp.reg.))\n"), std::string::npos) << text;
    EXPECT_NE(text.find("300 ... e2-e4"), std::string::npos) << "600 half-moves are still logged";
    EXPECT_EQ(text.find("301. e2-e4"), std::string::npos) << "the 601st is not";
}

TEST(SearchLog, PoorlySortedMoves) {
    testing::CTempFolder folder;
    const TChessboard board = test::Problem("7k/8/5K2/8/8/8/8/6R1 w - -", 5);
    CSearchLog::PoorlySortedMove(folder.Path().string(), board, TMove{6, 54, 0}, 9);
    EXPECT_EQ(folder.Read("PoorSWM.log"), "\n7k/8/5K2/8/8/8/8/6R1 #3, move Rg1-g7 sorted as 9th");
}

}  // namespace
}  // namespace moremate
