#include "engine/heuristics/heuristic_dialog_set.h"

#include <gtest/gtest.h>

#include <vector>

#include "engine/heuristics/heuristic_text.h"

namespace moremate {
namespace {

// A set shown in the dialog and taken back unchanged gives the same set: every field reaches its
// parameter and back, and what the dialog does not show stays as it was.
TEST(HeuristicDialogSet, FieldsGiveTheSetBack) {
    const std::vector<std::string> texts = {
        "SH_AREKINGSNEAR, SH_DONTLETKINGMOVE(excptns), SH_DONTLOSEANYFIGURES(incl.pawns)",
        "SH_KEEPKINGONTHEEDGE(C2f,A,D3,M0), SH_KEEPKINGWITHINEXTEDGE, SH_KEEPKINGNEARCORNER(2M)",
        "SH_DONTLEAVEMAINDIAGONAL(D5), SH_DONTLETFIGUREUNBLOCK(H1,D5,E7), SH_KEYLINE(C), "
        "SH_KEYDIAGONAL(A1-H8)",
        "SH_FINDFORCEDMATE(#2), SH_SKIPPASSIVEWHITEMOVES, SH_KEYWHITEFIGURE(D4)",
        "SH_SKIPWORSTWHITEMOVES, SH_KEYSQUARE(E4), SH_SEASNAKE(A1,B2), SH_ZUGZWANG",
        "SH_KEEPKINGONTHEEDGE(A), SH_KEEPKINGWITHINEXTEDGE(A,incl.corner,strict)",
    };
    for (const std::string& text : texts) {
        const THeuristicSet set = ReadHeuristicSetText(text).m_set;
        const THeuristicSet back = SetOfDialogFields(DialogFieldsOfSet(set), set.mask, set);
        EXPECT_EQ(HeuristicSetText(back), HeuristicSetText(set)) << text;
    }
}

// Fields changed in the dialog reach the set; a plain bit unchecked leaves it.
TEST(HeuristicDialogSet, ChangedFieldsReachTheSet) {
    const THeuristicSet base =
        ReadHeuristicSetText("SH_AREKINGSNEAR, SH_3MOVESTOMATE, SH_KEYSQUARE(E4)").m_set;
    THeuristicsDialogFields fields = DialogFieldsOfSet(base);
    fields.m_bDontLetKingMove = true;
    fields.m_bKeepNearCorner = true;
    fields.m_sCornerDistance = "3S";
    fields.m_bFindForcedMate = true;
    fields.m_nFfmMode = kFfmThreat2Plus;
    fields.m_sFfmRelaxations = "1";
    fields.m_sQuickMateDepth = "6";
    const THeuristicSet set = SetOfDialogFields(fields, SH_3MOVESTOMATE, base);
    EXPECT_EQ(HeuristicSetText(set),
              "SH_DONTLETKINGMOVE, SH_FINDFORCEDMATE(#2+), SH_KEYSQUARE(E4), SH_3MOVESTOMATE, "
              "SH_KEEPKINGNEARCORNER(3S)");
    EXPECT_EQ(set.params.ffm.relaxations, 1);
    EXPECT_EQ(set.params.quickMateDepth, 6);
}

}  // namespace
}  // namespace moremate
