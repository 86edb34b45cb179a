#include "problems/solving/solving_task.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "problems/solving/problem_heuristics.h"
#include "problems/solving/problem_solving.h"
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

}  // namespace
}  // namespace moremate
