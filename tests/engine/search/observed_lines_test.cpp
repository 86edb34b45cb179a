#include "engine/search/observed_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "engine/heuristics/heuristic_names.h"
#include "engine/passes/run_register.h"
#include "engine/passes/solver.h"
#include "engine/search/search_log.h"
#include "engine/state/run_control.h"
#include "engine/state/search_result.h"
#include "tests/support/positions.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

constexpr const char* kMateInFour = "B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1";

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
    TSolveRequest request;
    request.position = root;
    request.allSolutions = true;
    request.threads = 2;
    request.environment.store = &reg;
    request.environment.control = &control;
    request.environment.progressNodes = &nodes;
    request.environment.observed = &observed;
    std::atomic<bool> done{false};
    TSolveResult result;
    std::thread run([&] {
        result = Solve(request, control.StopFlag());
        done = true;
    });
    // Held at a node of a shallow ply, a thread shows a shorter line: look a few times, well into
    // the search, until a thread shows a whole one.
    std::vector<std::vector<TObservedMove>> lines;
    bool held = false;
    const auto whole = [&lines] {
        return std::any_of(lines.begin(), lines.end(),
                           [](const auto& line) { return line.size() == kMoves; });
    };
    for (int look = 1; look <= 5 && !done && !whole(); ++look) {
        while (nodes.load() < 8192u * static_cast<uint64_t>(look) && !done) std::this_thread::yield();
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
