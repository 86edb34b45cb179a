#include "engine/state/solving_run.h"

#include <gtest/gtest.h>

namespace moremate {
namespace {

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

}  // namespace
}  // namespace moremate
