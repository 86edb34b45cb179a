#include "problems/solving/problem_heuristics.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::ReadOne;

const std::string kBody = "{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n";

TEST(ProblemHeuristics, ParametersAddAndOffRemoves) {
    const ProblemEntry entry = ReadOne(
        "7 #4 sh_keepkingontheedge (STRICT,incl.corner) SH_3MovesToMate off SH_CAPTUREKNIGHT OFF "
        "SH_FINDFORCEDMATE(#2+-WithOtherHeuristics) SH_KEEPKINGNEARCORNER(2M)\n" +
        kBody);
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
    const ProblemEntry entry = ReadOne("12 #3 SH_KEEPKINGNEARCORNER(3X)\n" + kBody);
    try {
        ApplyProblemHeuristics(entry, {});
        FAIL();
    } catch (const ChessException& e) {
        EXPECT_STREQ(e.what(),
                     "Problem 12: invalid parameters of SH_KEEPKINGNEARCORNER(3X): Invalid parameter of "
                     "SH_KEEPKINGNEARCORNER: \"3X\"");
    }
    ProblemEntry noParameters;
    noParameters.m_mapHeuristicParams[SH_AREKINGSNEAR] = "near";
    EXPECT_THROW(ApplyProblemHeuristics(noParameters, {}), ChessException);
}

}  // namespace
}  // namespace moremate
