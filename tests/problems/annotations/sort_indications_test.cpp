#include "problems/annotations/sort_indications.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "core/notation.h"
#include "engine/search/move_ordering.h"
#include "problems/annotations/problem_variants.h"
#include "problems/solving/preferred_first_moves.h"
#include "tests/core/test_errors.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::ReadOne;

// White: Qa7, Ke1, Rh1; Black: Kc1. White to move in a mate in two.
const std::string kRecordBody = "{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n";

TMove Move(const char* from, const char* to, uint8_t promotion = 0) {
    return TMove{static_cast<Square>(String2Square(from)), static_cast<Square>(String2Square(to)), promotion};
}

std::string ParseError(const std::string& text, int language = kEnglish) {
    return test::ErrorOf([&] { ParseSortIndications(text, language); });
}

TEST(SortIndications, NegatedNumberedCheckingMoveAndASecondMove) {
    const TSortIndications groups = ParseSortIndications("~1. Qa7-a1+, b1-b2");
    ASSERT_EQ(groups.size(), 1u);
    ASSERT_EQ(groups[0].size(), 2u);
    EXPECT_TRUE(groups[0][0].bNegated);
    EXPECT_EQ(groups[0][0].nChecks, 1);
    EXPECT_EQ(groups[0][0].nFigure, kQueen);
    EXPECT_EQ(groups[0][0].move, Move("a7", "a1"));
    EXPECT_FALSE(groups[0][1].bNegated);
    EXPECT_EQ(groups[0][1].nChecks, 0);
    EXPECT_EQ(groups[0][1].move, Move("b1", "b2"));
}

TEST(SortIndications, SeparatorsMarksAndPromotions) {
    const TSortIndications groups = ParseSortIndications(" Rh1>h2++ ; e7:d8Q*,12.  Ng1-f3 ;");
    ASSERT_EQ(groups.size(), 2u);
    ASSERT_EQ(groups[0].size(), 1u);
    EXPECT_EQ(groups[0][0].nChecks, 2);
    EXPECT_FALSE(groups[0][0].bCapture);
    ASSERT_EQ(groups[1].size(), 2u);
    EXPECT_TRUE(groups[1][0].bCapture);
    EXPECT_EQ(groups[1][0].move, Move("e7", "d8", kQueen));
    EXPECT_EQ(groups[1][1].nFigure, kKnight);
    EXPECT_EQ(groups[1][1].move, Move("g1", "f3"));
}

TEST(SortIndications, TextReadsBackAsTheSameDescriptions) {
    const std::string text = "~Qa7:a1+; e7-e8N; Rh1-h2++; b2:c1R";
    const TSortIndications groups = ParseSortIndications(text);
    EXPECT_EQ(SortIndicationsText(groups), text);
    EXPECT_EQ(ParseSortIndications(SortIndicationsText(groups)), groups);
}

TEST(SortIndications, Messages) {
    const std::string tooLong =
        "Move description too long (note that moves should be separated with a comma or semicolon)";
    EXPECT_EQ(ParseError("a7-a1 b1-b2"), tooLong);
    EXPECT_EQ(ParseError("1. Qa7-a1+ Kc1-d2"), tooLong);
    for (const char* piece :
         {"a7a1", "7a-a1", "a", "a9-a1", "a7-i1", "Xa7-a1", "a7-a8K", "Qa7", "~", "a7-a1+++"})
        EXPECT_EQ(ParseError(std::string("e2-e4, ") + piece),
                  std::string("Invalid description of SortIndication: ") + piece)
            << piece;
    EXPECT_EQ(ParseError(" a7a1 ", kPolish), "Niepoprawny opis SortIndication: a7a1");
    EXPECT_EQ(ParseError(""), test::kNoError);
}

TEST(PreferredFirstMoves, DescriptionsNameLegalMovesInTheirOrder) {
    ProblemEntry entry =
        ReadOne("1 #2\n//@SortIndications: Rh1-h2; Qa7-a3+, Qa7-b8+, a7:a1, Ke1-g1\n" + kRecordBody);
    // Qa7-b8 gives no check and a1 holds nothing to capture; Ke1-g1 is castling.
    EXPECT_EQ(PreferredFirstMoves(entry),
              (std::vector<TMove>{Move("h1", "h2"), Move("a7", "a3"), Move("e1", "g1")}));
}

TEST(PreferredFirstMoves, VariantsByModeAndNegatedMovesLeftOut) {
    ProblemEntry entry = ReadOne(
        "1 #2 UseVariantsAsSortIndications\n//!VARIANTS\n//!Another: 1. Qa7-a3+\n//!Main variant: 1. "
        "Qa7-a1+\n"
        "//!Third: 1. Rh1-h2\n//!Wrong: 1. Qa7-h8\n//!ENDVARIANTS\n//@SortIndications: e1-e2, ~Rh1-h2\n" +
        kRecordBody);
    EXPECT_EQ(PreferredFirstMoves(entry),
              (std::vector<TMove>{Move("e1", "e2"), Move("a7", "a1"), Move("a7", "a3")}));
    entry.m_sortIndicationMode = SortIndicationMode::MainVariant;
    EXPECT_EQ(PreferredFirstMoves(entry), (std::vector<TMove>{Move("e1", "e2"), Move("a7", "a1")}));
    entry.m_sortIndicationMode = SortIndicationMode::None;
    EXPECT_EQ(PreferredFirstMoves(entry), (std::vector<TMove>{Move("e1", "e2")}));
    entry.m_annotations.sSortIndications = "e1e2";
    EXPECT_THROW(PreferredFirstMoves(entry), ChessException);
}

TEST(PreferMoves, PreferredMovesLeadInTheirOrderAndTheRestKeepTheirs) {
    TMoveList list;
    for (const char* to : {"a1", "a2", "a3", "a4", "a5"}) list.Add(String2Square("a7"), String2Square(to));
    PreferMoves(list, {Move("a7", "a4"), Move("h1", "h2"), Move("a7", "a2"), Move("a7", "a4")});
    const std::vector<TMove> order(list.begin(), list.end());
    EXPECT_EQ(order, (std::vector<TMove>{Move("a7", "a4"), Move("a7", "a2"), Move("a7", "a1"),
                                         Move("a7", "a3"), Move("a7", "a5")}));
}

}  // namespace
}  // namespace moremate
