#include "engine/heuristics/heuristic_dialog_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "core/notation.h"
#include "engine/heuristics/heuristic_text.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

const char* const kFen = "k7/8/8/8/8/8/8/4K2R w - - 0 1";

// A set shown in the dialog and taken back unchanged gives the same set: every field reaches its
// parameter and back, and what the dialog does not show stays as it was.
TEST(HeuristicDialogSet, FieldsGiveTheSetBack) {
    const std::vector<std::string> texts = {
        "SH_AREKINGSNEAR, SH_DONTLETKINGMOVE(excptns), SH_DONTLOSEANYFIGURES(incl.pawns)",
        "SH_KEEPKINGONTHEEDGE(C2f,A,D3,M0), SH_KEEPKINGWITHINEXTEDGE, SH_KEEPKINGNEARCORNER(2M)",
        "SH_DONTLEAVEMAINDIAGONAL(D5), SH_DONTLETFIGUREUNBLOCK(H1,D5,E7), SH_KEYLINE(C), "
        "SH_KEYDIAGONAL(A1-H8)",
        "SH_FINDFORCEDMATE(#2), SH_SKIPPASSIVEWHITEMOVES, SH_KEYWHITEFIGURE(D4)",
        "SH_SKIPWORSTWHITEMOVES, SH_KEYSQUARE(E4), SH_SEASNAKE(A1,B2)",
        "SH_KEEPKINGONTHEEDGE(A), SH_KEEPKINGWITHINEXTEDGE(A,incl.corner,strict)",
        "SH_ONECOLORPLAYPOSSIBLE(SeparatedBlackBishop), SH_FINDFORCEDMATE(#2-WithOtherHeuristics), "
        "SH_SEASNAKE(D2,E3,4)",
    };
    const TChessboard position = test::Board(kFen);
    for (const std::string& text : texts) {
        const THeuristicSet set = ReadHeuristicSetText(text).m_set;
        const THeuristicSet back =
            SetOfDialogFields(DialogFieldsOfSet(set, position), set.mask, set, position);
        EXPECT_EQ(HeuristicSetText(back), HeuristicSetText(set)) << text;
    }
}

// Fields changed in the dialog reach the set; a plain bit unchecked leaves it.
TEST(HeuristicDialogSet, ChangedFieldsReachTheSet) {
    const THeuristicSet base =
        ReadHeuristicSetText("SH_AREKINGSNEAR, SH_3MOVESTOMATE, SH_KEYSQUARE(E4)").m_set;
    const TChessboard position = test::Board(kFen);
    THeuristicsDialogFields fields = DialogFieldsOfSet(base, position);
    fields.m_bDontLetKingMove = true;
    fields.m_bKeepNearCorner = true;
    fields.m_sCornerDistance = "3S";
    fields.m_bFindForcedMate = true;
    fields.m_nFfmMode = kFfmThreat2Plus;
    fields.m_sFfmRelaxations = "1";
    fields.m_sQuickMateDepth = "6";
    const THeuristicSet set = SetOfDialogFields(fields, SH_3MOVESTOMATE, base, position);
    EXPECT_EQ(HeuristicSetText(set),
              "SH_DONTLETKINGMOVE, SH_FINDFORCEDMATE(#2+), SH_KEYSQUARE(E4), SH_3MOVESTOMATE, "
              "SH_KEEPKINGNEARCORNER(3S)");
    EXPECT_EQ(set.params.ffm.relaxations, 1);
    EXPECT_EQ(set.params.quickMateDepth, 6);
}

// The parameters that only the dialog gives: the sea snake's squares with its pendulum, the zugzwang
// position as the one after White's move, the colour of one-colour play and FFM's
// "-WithOtherHeuristics" partially. Shown again, the fields read the same.
TEST(HeuristicDialogSet, PlayPatternsReachTheSetAndComeBack) {
    const TChessboard position = test::Board(kFen);
    THeuristicsDialogFields fields{.m_bFindForcedMate = true,
                                   .m_nFfmMode = kFfmThreat2,
                                   .m_sFfmRelaxations = "0",
                                   .m_bFfmWithOthers = true,
                                   .m_bFfmPartially = true,
                                   .m_bSeaSnake = true,
                                   .m_sSeaSnake = "d2 e2 3",
                                   .m_sPendulum = "b7,b8",
                                   .m_bOneColour = true,
                                   .m_eColourMode = TColourMode::BlackSquaresOnly,
                                   .m_bZugzwang = true,
                                   .m_sZugzwangMove = "Ke1-d1",
                                   .m_sZugzwangBy = "2"};
    const THeuristicSet set = SetOfDialogFields(fields, 0, {}, position);
    const THeuristicParameters& p = set.params;
    EXPECT_EQ(p.ffm.withOtherHeuristics, kFfmOthersPartially);
    EXPECT_EQ(p.seaSnake,
              (TSeaSnake{.approach = 11, .turnBack = 12, .pendulum = {49, 57}, .onlyAfterMove = 3}));
    EXPECT_EQ(p.colourMode, TColourMode::BlackSquaresOnly);
    TChessboard after;
    MakeMove(position, "Ke1-d1", after);
    EXPECT_TRUE(p.zugzwangSet);
    EXPECT_TRUE(std::ranges::equal(p.zugzwangSquares, after.squares));
    EXPECT_EQ(p.zugzwangAfterMove, 2);
    EXPECT_EQ(HeuristicSetText(set),
              "SH_ONECOLORPLAYPOSSIBLE(BlackSquaresOnly), SH_FINDFORCEDMATE(#2-WithOtherHeuristics), "
              "SH_SEASNAKE(D2,E2,3), SH_ZUGZWANG");
    const THeuristicsDialogFields shown = DialogFieldsOfSet(set, position);
    EXPECT_TRUE(shown.m_bFfmPartially);
    EXPECT_EQ(shown.m_sSeaSnake, "D2,E2,3");
    EXPECT_EQ(shown.m_sPendulum, "B7,B8");
    EXPECT_EQ(shown.m_eColourMode, TColourMode::BlackSquaresOnly);
    EXPECT_EQ(shown.m_sZugzwangMove, "Ke1-d1");
    EXPECT_EQ(shown.m_sZugzwangBy, "2");
}

}  // namespace
}  // namespace moremate
