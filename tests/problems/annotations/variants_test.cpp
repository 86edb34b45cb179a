#include "problems/annotations/problem_variants.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "core/notation.h"
#include "engine/search/move_ordering.h"
#include "problems/annotations/predefined_sort_indications.h"
#include "problems/annotations/sort_indications.h"
#include "problems/annotations/variant_commands.h"
#include "problems/solving/preferred_first_moves.h"
#include "tests/problems/problem_text.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using testing::kRecordBody;
using testing::ReadOne;

ProblemEntry Problem(const std::string& variantLines = "") {
    const std::string block = variantLines.empty() ? "" : "//!VARIANTS\n" + variantLines + "//!ENDVARIANTS\n";
    return ReadOne("1 #3\n" + block + kRecordBody);
}

std::string LineError(const std::string& line) {
    return test::ErrorOf([&] { ParseVariantLine(line, Problem().m_position.board); });
}

TEST(VariantLines, WrittenLinesReadBackAsTheSameVariant) {
    const ProblemEntry entry = Problem();
    const TChessboard& start = entry.m_position.board;
    const std::vector<std::vector<TMove>> lines = {
        {},
        ParseVariantLine("x: Qa7-a3+ Kc1-c2 Qa3-a2+", start).vMoves,
        ParseVariantLine("x: 0-0 Kc1-d2 Rf1-f2+ Kd2-c3 Qa7-a1", start).vMoves,
    };
    for (const std::string name : {"Main variant", "{Variant2}", "a: b: c", "with ::", "x:"}) {
        for (const std::vector<TMove>& moves : lines) {
            const std::string line = VariantLine(start, name, moves);
            const TVariant variant = ParseVariantLine(line, start);
            EXPECT_EQ(variant.sName, name) << line;
            EXPECT_EQ(variant.vMoves, moves) << line;
        }
    }
    EXPECT_EQ(VariantLine(start, "Main variant", lines[1]), "Main variant: 1. Qa7-a3+ Kc1-c2 2. Qa3-a2+");
}

TEST(VariantLines, Messages) {
    EXPECT_EQ(LineError("v: 1. Qa7-a3+ Kc1-b2"), "Move Kc1-b2 in the stored variant is invalid");
    EXPECT_EQ(LineError("v: Qa7-h8"), "Move Qa7-h8 in the stored variant is invalid");
    EXPECT_EQ(LineError("no name"), "An error occurred.");
    std::string shuffle;
    for (size_t i = 0; i < kMaxVariantMoves / 4 + 1; ++i) shuffle += " Rh1-h2 Kc1-b1 Rh2-h1 Kb1-c1";
    EXPECT_EQ(LineError("long:" + shuffle),
              "The stored variant is too long: " + std::to_string(kMaxVariantMoves + 4) + " moves");
    EXPECT_EQ(LineError("fits:" + shuffle.substr(0, shuffle.size() - 28)), test::kNoError);
}

TEST(VariantLines, UnreadableStoredLinesAreSkippedWithAMessage) {
    const ProblemEntry entry = Problem("//!Main variant: 1. Qa7-a3+\n//!Bad: 1. Qa7-h8\n//!Empty:\n");
    const TVariantReading reading = ReadVariants(entry);
    EXPECT_EQ(reading.variants.size(), 2u);
    EXPECT_TRUE(reading.variants.at("Empty").empty());
    EXPECT_EQ(reading.vsMessages, std::vector<std::string>{"Move Qa7-h8 in the stored variant is invalid"});
}

TEST(VariantCommands, StoreRenameDeleteAndTheirQuestions) {
    ProblemEntry entry = Problem("//!Main variant: 1. Qa7-a3+\n");
    CRecordingReporter reporter;
    const TUserQuestions questions{&reporter, kEnglish};
    const std::vector<TMove> key = ParseVariantLine("k: Rh1-h2", entry.m_position.board).vMoves;

    EXPECT_TRUE(StoreVariant(entry, "Try", key, questions));
    reporter.QueueAnswer(ReportAnswer::No);
    EXPECT_FALSE(StoreVariant(entry, "Main variant", key, questions));
    EXPECT_FALSE(RenameVariant(entry, "Try", "Main variant", questions));
    EXPECT_FALSE(RenameVariant(entry, "Nothing", "New", questions));
    EXPECT_TRUE(RenameVariant(entry, "Try", "Key", questions));
    reporter.QueueAnswer(ReportAnswer::No);
    EXPECT_FALSE(DeleteVariant(entry, "Key", questions));
    EXPECT_FALSE(StoreVariant(entry, "Illegal", {TMove{4, 3, 0}}, questions));

    const std::vector<CRecordingReporter::TReport> reports = reporter.Reports();
    ASSERT_EQ(reports.size(), 5u);
    EXPECT_EQ(reports[0].sText, "Variant\"Main variant\" already exists. Do you want to overwrite it?\n");
    EXPECT_EQ(reports[0].sTitle, "Question");
    EXPECT_EQ(reports[1].sText,
              "Cannot rename variant\"Try\" to \"Main variant\" (such variant already exists)");
    EXPECT_EQ(reports[2].sText, "An error occurred.");
    EXPECT_EQ(reports[3].sText, "Do you really want to delete variant\"Key\"");
    EXPECT_EQ(reports[4].sText, "Move Ke1-d1 in the stored variant is invalid");
    EXPECT_EQ(entry.m_annotations.vsVariantLines,
              (std::vector<std::string>{"Key: 1. Rh1-h2", "Main variant: 1. Qa7-a3+"}));

    EXPECT_TRUE(DeleteVariant(entry, "Key", questions));
    EXPECT_EQ(ReadOne(WriteCollectionText({entry})), entry);
}

TEST(PredefinedSortIndications, MoveNumbersDropped) {
    EXPECT_EQ(WithoutMoveNumbers("1. Qf2-b6+ Kb4-a3 2. Qb6-a5+ 1...Ka3 12 x"),
              " Qf2-b6+ Kb4-a3  Qb6-a5+ Ka3  x");
    EXPECT_EQ(WithoutMoveNumbers("Rh2:h7+ a1b2"), "Rh2:h7+ a1b2");
}

TEST(PredefinedSortIndications, KnownCompositionsBecomeNumberedVariants) {
    ProblemEntry entry = ReadOne("3 #8\n{\n\tFEN: 8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4 w - - 0 1\n}\n");
    EXPECT_EQ(AddPredefinedVariants(entry, {}), 1u);
    EXPECT_EQ(entry.m_annotations.vsVariantLines, std::vector<std::string>{"{Variant1}: 1. Qf2-b6+"});
    EXPECT_EQ(AddPredefinedVariants(entry, {}), 0u);  // the variant is there already

    ProblemEntry unknown = Problem();
    EXPECT_EQ(AddPredefinedVariants(unknown, {}), 0u);
    EXPECT_EQ(test::ErrorOf([&] {
                  VariantsFromSolutions({"1. Qf2-b6+", "1. Qf2-h8"}, entry.m_position.board);
              }),
              "Error in predefined sort indications.");
}

// White: Qa7, Ke1, Rh1; Black: Kc1. White to move in a mate in two.
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
    EXPECT_EQ(groups[0][0].move, test::M("a7", "a1"));
    EXPECT_FALSE(groups[0][1].bNegated);
    EXPECT_EQ(groups[0][1].nChecks, 0);
    EXPECT_EQ(groups[0][1].move, test::M("b1", "b2"));
}

TEST(SortIndications, SeparatorsMarksAndPromotions) {
    const TSortIndications groups = ParseSortIndications(" Rh1>h2++ ; e7:d8Q*,12.  Ng1-f3 ;");
    ASSERT_EQ(groups.size(), 2u);
    ASSERT_EQ(groups[0].size(), 1u);
    EXPECT_EQ(groups[0][0].nChecks, 2);
    EXPECT_FALSE(groups[0][0].bCapture);
    ASSERT_EQ(groups[1].size(), 2u);
    EXPECT_TRUE(groups[1][0].bCapture);
    EXPECT_EQ(groups[1][0].move, test::M("e7", "d8", kQueen));
    EXPECT_EQ(groups[1][1].nFigure, kKnight);
    EXPECT_EQ(groups[1][1].move, test::M("g1", "f3"));
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
              (std::vector<TMove>{test::M("h1", "h2"), test::M("a7", "a3"), test::M("e1", "g1")}));
}

TEST(PreferredFirstMoves, VariantsByModeAndNegatedMovesLeftOut) {
    ProblemEntry entry = ReadOne(
        "1 #2 UseVariantsAsSortIndications\n//!VARIANTS\n//!Another: 1. Qa7-a3+\n//!Main variant: 1. "
        "Qa7-a1+\n"
        "//!Third: 1. Rh1-h2\n//!Wrong: 1. Qa7-h8\n//!ENDVARIANTS\n//@SortIndications: e1-e2, ~Rh1-h2\n" +
        kRecordBody);
    EXPECT_EQ(PreferredFirstMoves(entry),
              (std::vector<TMove>{test::M("e1", "e2"), test::M("a7", "a1"), test::M("a7", "a3")}));
    entry.m_sortIndicationMode = SortIndicationMode::MainVariant;
    EXPECT_EQ(PreferredFirstMoves(entry), (std::vector<TMove>{test::M("e1", "e2"), test::M("a7", "a1")}));
    entry.m_sortIndicationMode = SortIndicationMode::None;
    EXPECT_EQ(PreferredFirstMoves(entry), (std::vector<TMove>{test::M("e1", "e2")}));
    entry.m_annotations.sSortIndications = "e1e2";
    EXPECT_THROW(PreferredFirstMoves(entry), ChessException);
}

TEST(PreferMoves, PreferredMovesLeadInTheirOrderAndTheRestKeepTheirs) {
    TMoveList list;
    for (const char* to : {"a1", "a2", "a3", "a4", "a5"}) list.Add(String2Square("a7"), String2Square(to));
    PreferMoves(list, {test::M("a7", "a4"), test::M("h1", "h2"), test::M("a7", "a2"), test::M("a7", "a4")});
    const std::vector<TMove> order(list.begin(), list.end());
    EXPECT_EQ(order, (std::vector<TMove>{test::M("a7", "a4"), test::M("a7", "a2"), test::M("a7", "a1"),
                                         test::M("a7", "a3"), test::M("a7", "a5")}));
}

}  // namespace
}  // namespace moremate
