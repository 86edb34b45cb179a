#include "problems/solving/solving_task.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "engine/passes/run_register.h"
#include "problems/solving/problem_heuristics.h"
#include "problems/solving/problem_solving.h"
#include "problems/solving/run_checks.h"
#include "settings/reporter.h"
#include "tests/problems/problem_text.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using testing::ReadOne;

TEST(SolvingTask, DirectmateStartsWithWhiteAndItsPlies) {
    const ProblemEntry entry = testing::ReadOne("1 #3 { FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}");
    const TSolvingTask task = MakeSolvingTask(entry);
    EXPECT_EQ(task.type, ProblemType::Directmate);
    EXPECT_EQ(task.nPlies, 5);
    EXPECT_EQ(task.position.movesLeft, 5);
    EXPECT_EQ(task.position.movesAtStart, 5);
    EXPECT_TRUE(task.position.WhiteToMove());
    EXPECT_EQ(CastlingRights(task.position), kWhiteKingside);
    EXPECT_TRUE(task.root.playedMoves.empty());
    EXPECT_EQ(task.position.previous, nullptr);
}

TEST(SolvingTask, PlayedMovesLeadToTheRootAndCostCastling) {
    const ProblemEntry entry = testing::ReadOne(
        "1 { FEN: r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n Moves: 1. Ke1-d1 Ke8-d8 2. Kd1-e1 Kd8-e8\n}");
    const TSolvingTask task = MakeSolvingTask(entry);
    EXPECT_EQ(task.root.playedMoves, entry.m_vMoves);
    EXPECT_EQ(CastlingRights(task.root.start),
              kWhiteKingside | kWhiteQueenside | kBlackKingside | kBlackQueenside);
    EXPECT_EQ(CastlingRights(task.position), 0);
    EXPECT_EQ(task.position.previous, nullptr);
}

TEST(SolvingTask, BlackInCheckIsReadButCannotBeSolved) {
    const ProblemEntry entry = testing::ReadOne("1 #2 { FEN: 4k3/8/8/8/8/8/8/3KR3 w - - 0 1\n}");
    EXPECT_THROW(MakeSolvingTask(entry), ChessException);
}

TEST(SolvingTask, MovesPlayedAfterThePositionShortenTheTask) {
    const ProblemEntry entry = testing::ReadOne("1 #3 { FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}");
    TSolvingTask task = MakeSolvingTask(entry);
    PlayMovesAfter(task, "1. Qa7-a8 Kc1-b2");
    EXPECT_EQ(task.nPlies, 3);
    EXPECT_EQ(task.position.movesLeft, 3);
    EXPECT_EQ(task.root.playedMoves.size(), 2u);
    EXPECT_EQ(task.position.previous, nullptr);
    EXPECT_FALSE(AnalysedLineRepeats(task));
    for (const char* refused : {"Qa7-a8", "Qa7-a8 Kc1-b2 Qa8-a7 Kb2-c1 Qa7-a8 Kc1-b2", "Qa7-a8 Kc1-d2"}) {
        TSolvingTask again = MakeSolvingTask(entry);
        EXPECT_THROW(PlayMovesAfter(again, refused), ChessException) << refused;
    }
}

// The same squares count as a repetition only with the same castling rights.
TEST(SolvingTask, LineThatComesBackToThePositionRepeatsIt) {
    const ProblemEntry shortMate = testing::ReadOne("1 #4 { FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}");
    TSolvingTask task = MakeSolvingTask(shortMate);
    PlayMovesAfter(task, "Qa7-a8 Kc1-b2 Qa8-a7 Kb2-c1");
    EXPECT_TRUE(AnalysedLineRepeats(task));
    const ProblemEntry castlingLost = testing::ReadOne(
        "1 #2 { FEN: r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n Moves: 1. Ke1-d1 Ke8-d8 2. Kd1-e1 Kd8-e8\n}");
    EXPECT_FALSE(AnalysedLineRepeats(MakeSolvingTask(castlingLost)));

    CRecordingReporter reporter;
    CRunRegister reg(20'000);
    TSolveSettings settings;
    settings.after = "Qa7-a8 Kc1-b2 Qa8-a7 Kb2-c1";
    settings.run.reporter = &reporter;
    const TProblemReport report = SolvePreparedProblem(shortMate, settings, TOptions{}, reg, nullptr);
    EXPECT_EQ(report.result, "stopped");
    EXPECT_EQ(report.nodes, 0u);
    EXPECT_EQ(reporter.Reports().size(), 1u);
}

TEST(ProblemHeuristics, ParametersAddAndOffRemoves) {
    const ProblemEntry entry = ReadOne(
        "7 #4 sh_keepkingontheedge (STRICT,incl.corner) SH_3MovesToMate off SH_CAPTUREKNIGHT OFF "
        "SH_FINDFORCEDMATE(#2+-WithOtherHeuristics) SH_KEEPKINGNEARCORNER(2M)\n" +
        testing::kRecordBody);
    THeuristicSet start{SH_3MOVESTOMATE | SH_AREKINGSNEAR | SH_CAPTUREKNIGHT | SH_KEEPKINGNEARCORNER, {}};
    start.params.cornerDistance = 4;
    start.params.ffm.relaxations = 3;
    const THeuristicSet set = ApplyProblemHeuristics(entry, start);
    EXPECT_EQ(set.mask, SH_AREKINGSNEAR | SH_KEEPKINGONTHEEDGE | SH_FINDFORCEDMATE | SH_KEEPKINGNEARCORNER);
    EXPECT_EQ(set.params.kingMode, TKingMode::Strict);
    EXPECT_TRUE(set.params.inclCorner);
    EXPECT_EQ(set.params.ffm.mode, kFfmThreat2Plus);
    EXPECT_EQ(set.params.ffm.withOtherHeuristics, 2);
    EXPECT_EQ(set.params.ffm.relaxations, 3);
    EXPECT_EQ(set.params.cornerDistance, -2);
}

TEST(ProblemHeuristics, OffWinsOverParameters) {
    ProblemEntry entry;
    entry.m_mapHeuristicParams[SH_DONTLOSEANYFIGURES] = "incl.pawns";
    entry.m_nHeuristicsOff = SH_DONTLOSEANYFIGURES;
    EXPECT_EQ(ApplyProblemHeuristics(entry, {}).mask, 0u);
}

TEST(ProblemHeuristics, UnreadableParametersNameProblemHeuristicAndItem) {
    const ProblemEntry entry = ReadOne("12 #3 SH_KEEPKINGNEARCORNER(3X)\n" + testing::kRecordBody);
    EXPECT_EQ(test::ErrorOf([&] { ApplyProblemHeuristics(entry, {}); }),
              "Problem 12: invalid parameters of SH_KEEPKINGNEARCORNER(3X): Invalid parameter of "
              "SH_KEEPKINGNEARCORNER: \"3X\"");
    ProblemEntry noParameters;
    noParameters.m_mapHeuristicParams[SH_AREKINGSNEAR] = "near";
    EXPECT_THROW(ApplyProblemHeuristics(noParameters, {}), ChessException);
}

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
        ReadCollectionFile(testing::kData / "checks.cp", entries, false, {});
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
