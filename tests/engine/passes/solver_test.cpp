#include "engine/passes/solver.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/fen.h"
#include "core/notation.h"
#include "core/validation.h"
#include "tests/engine/map_store.h"

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

TSolveRequest Request(const char* fen, int moves, CPositionStore* store) {
    TSolveRequest request;
    EXPECT_TRUE(ReadFen(fen, request.position));
    PrepareForSolving(request.position, 2 * moves - 1, true);
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
    const TSolveResult r = Solve(Request(kCases[2].fen, 3, nullptr), &stop);
    EXPECT_TRUE(r.stopped);
    EXPECT_TRUE(r.keys.empty());
}

}  // namespace
}  // namespace moremate
