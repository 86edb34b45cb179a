#include "engine/search/search_log.h"

#include <gtest/gtest.h>

#include "engine/heuristics/heuristic_names.h"
#include "engine/state/search_result.h"
#include "tests/core/test_line.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

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
