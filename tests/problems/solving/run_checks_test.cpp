#include "problems/solving/run_checks.h"

#include <gtest/gtest.h>

#include "engine/passes/run_register.h"
#include "problems/solving/solving_task.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

const std::filesystem::path kData = MOREMATE_TEST_DATA;

class RunChecksTest : public ::testing::Test {
  protected:
    std::vector<std::string> Checks(const ProblemEntry& entry, bool allSolutions = false,
                                    const TAvailableData& available = {}) {
        TSolvingTask task = MakeSolvingTask(entry);
        task.position.problem = &task.root;
        return FailedChecks(entry, task.position, TRunFacts{allSolutions, true, &m_register, available});
    }
    ProblemEntry Record(unsigned number) {
        std::vector<ProblemEntry> entries;
        ReadCollectionFile(kData / "checks.cp", entries, false, {});
        return entries.at(number - 1);
    }

    CRunRegister m_register{1u << 16};
};

TEST_F(RunChecksTest, RequirementsHoldOnlyWithTheirDataAndAllSolutionsOnesOnlyInAllSolutionsRuns) {
    ProblemEntry entry = testing::ReadOne(
        "1 #2 Requires KQK ONLYIFAVAIL KRK AllSolutionsRequires KBNK AllSolutionsRequiresSyzygy\n"
        "{\n FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n");
    EXPECT_EQ(Checks(entry), std::vector<std::string>{"Requires clause not satisfied"});
    EXPECT_EQ(Checks(entry, true), (std::vector<std::string>{"Requires clause not satisfied",
                                                             "AllSolutionsRequires clause not satisfied",
                                                             "AllSolutionsRequiresSyzygy not satisfied"}));
    // One data set of two is not enough.
    EXPECT_EQ(Checks(entry, false, {{"KQK"}, false}),
              std::vector<std::string>{"Requires clause not satisfied"});
    EXPECT_TRUE(Checks(entry, true, {{"KQK", "KRK", "KBNK"}, true}).empty());
    // The data's own names of the types (as found on disk) satisfy the capital names too.
    EXPECT_TRUE(Checks(entry, true, {{"KQk", "KRk", "KBNk"}, true}).empty());
    EXPECT_EQ(Checks(entry, false, {{"KQkr"}, false}),
              std::vector<std::string>{"Requires clause not satisfied"});

    entry.m_nOptions |= kOptRequiresSyzygy;
    EXPECT_EQ(Checks(entry, false, {{"KQK", "KRK"}, false}),
              std::vector<std::string>{"RequiresSyzygy not satisfied"});
}

TEST_F(RunChecksTest, DefencesAgreeWithTheEngine) {
    EXPECT_TRUE(Checks(Record(1)).empty());
    EXPECT_EQ(Checks(Record(3)),
              std::vector<std::string>{
                  "Error in auxMate:\n\nexpected c8-c3\nfound b7-b8Q, b7-b8B, c8-c7, c8-f5, c8-h3"});
}

TEST_F(RunChecksTest, WrongDefencesAreNamed) {
    EXPECT_EQ(Checks(Record(2), false, {{"KQK"}, true}),
              (std::vector<std::string>{
                  "Error in best defence:\n\nexpected d7-c8\nfound d7-e8",
                  "Error in count of bestDefences (LookForBestDefencesAfter):\n\nexpected 2\nfound 1",
                  "Error in bestDefences (LookForBestDefencesAfter):\n\n expected defence but not found by "
                  "engine: d7-c8"}));
}

TEST_F(RunChecksTest, AStoppedRunChecksOnlyItsRequirementsAndABadLineIsReported) {
    const ProblemEntry entry = Record(2);
    TSolvingTask task = MakeSolvingTask(entry);
    task.position.problem = &task.root;
    EXPECT_EQ(FailedChecks(entry, task.position, TRunFacts{false, false, &m_register, {{"KQK"}, true}}),
              std::vector<std::string>{});

    ProblemEntry white = Record(1);
    white.m_mapVariantPairs[kBestDefenceVariantName].sMoves = "1. Bd7-b5+ Ke2-e3";
    const std::vector<std::string> failures = Checks(white);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_TRUE(failures[0].starts_with("LookForBestDefencesAfter: the line must end with White's move"));
    white.m_mapVariantPairs[kBestDefenceVariantName].sDefences = "Ke2-e4";
    white.m_mapVariantPairs[kBestDefenceVariantName].sMoves = "1. Bd7-b5+";
    EXPECT_EQ(Checks(white), std::vector<std::string>{"Invalid move in MakeMove() : Ke2-e4"});
}

}  // namespace
}  // namespace moremate
