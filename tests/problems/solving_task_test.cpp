#include "problems/solving_task.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "problem_text.h"

namespace moremate {
namespace {

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
    try {
        MakeSolvingTask(entry);
        FAIL();
    } catch (const ChessException& error) {
        EXPECT_STREQ(error.what(), "Black king cannot be checked in the mate task starting postition.");
    }
}

}  // namespace
}  // namespace moremate
