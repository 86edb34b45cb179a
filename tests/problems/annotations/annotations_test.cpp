#include <gtest/gtest.h>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "problems/annotations/award_places.h"
#include "problems/annotations/database_links.h"
#include "problems/annotations/foreign_problem.h"
#include "problems/annotations/problem_tags.h"
#include "problems/annotations/problem_variants.h"
#include "problems/annotations/problem_year.h"
#include "problems/annotations/register_reference.h"
#include "problems/annotations/sort_indications.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::kRecordBody;
using testing::ReadOne;

// Reading, writing and reading again gives the same record and the same text.
void ExpectRoundTrip(const ProblemEntry& entry) {
    const std::string text = WriteCollectionText({entry});
    const ProblemEntry again = ReadOne(text);
    EXPECT_EQ(again, entry);
    EXPECT_EQ(WriteCollectionText({again}), text);
}

TEST(Annotations, EveryKindReadsAndWritesBack) {
    const ProblemEntry entry = ReadOne(
        "5 #3 UseMainVariantAsSortIndications\n//#TAGS\n//#2nd prize\n//#Zagoruiko\n"
        "//!VARIANTS\n//!Main variant: 1. Qa7-a3+ Kc1-c2 2. Qa3-a2+\n//!{Variant1}: 1. "
        "Rh1-h2\n//!ENDVARIANTS\n"
        "//@SortIndications: ~1. Qa7-a1+, Rh1-h2; e1-e2\n//@tmpreg=4711\n" +
        kRecordBody);
    EXPECT_EQ(Tags(entry), (std::vector<std::string>{"2nd prize", "Zagoruiko"}));
    EXPECT_EQ(ReadVariants(entry).variants.size(), 2u);
    EXPECT_EQ(ParseSortIndications(*entry.m_annotations.sSortIndications).size(), 2u);
    EXPECT_EQ(TmpRegNumber(entry), 4711u);
    ExpectRoundTrip(entry);
}

TEST(Annotations, TagsFollowedDirectlyByTheBody) {
    const ProblemEntry entry = ReadOne("5 #3\n//#TAGS\n//#miniature\n" + kRecordBody);
    EXPECT_EQ(Tags(entry), std::vector<std::string>{"miniature"});
    EXPECT_TRUE(ReadVariants(entry).variants.empty());
    EXPECT_FALSE(TmpRegNumber(entry));
    ExpectRoundTrip(entry);
}

TEST(Annotations, EditedAnnotationsWriteBack) {
    ProblemEntry entry = ReadOne("5 #3\n" + kRecordBody);
    AddTag(entry, "1st prize");
    TVariants variants;
    variants[kMainVariantName] = ParseVariantLine("v: Qa7-a3+ Kc1-c2", entry.m_position.board).vMoves;
    variants[PredefinedVariantName(3)] = {};
    WriteVariants(entry, variants);
    entry.m_annotations.sSortIndications = SortIndicationsText(ParseSortIndications("~Qa7:a1+, e1-e2"));
    SetTmpRegNumber(entry, 12);
    EXPECT_NE(
        WriteRecord(entry).find("//#TAGS\n//#1st prize\n//!VARIANTS\n//!Main variant: 1. Qa7-a3+ Kc1-c2\n"),
        std::string::npos);
    ExpectRoundTrip(entry);
    EXPECT_EQ(ReadVariants(ReadOne(WriteCollectionText({entry}))).variants, variants);
    EXPECT_EQ(TmpRegNumber(ReadOne(WriteCollectionText({entry}))), 12u);
}

TEST(Annotations, RegisterReferenceThatIsNoNumber) {
    ProblemEntry entry = ReadOne("5 #3\n//@tmpreg= 17 \n" + kRecordBody);
    EXPECT_EQ(TmpRegNumber(entry), 17u);
    entry.m_annotations.sTmpReg = "x17";
    EXPECT_FALSE(TmpRegNumber(entry));
    entry.m_annotations.sTmpReg = "";
    EXPECT_FALSE(TmpRegNumber(entry));
}

ProblemEntry Tagged(const std::string& tagLines) {
    return ReadOne("1 #2\n//#TAGS\n" + tagLines + kRecordBody);
}

TEST(Tags, AddRemoveKeepOrderAndUniqueness) {
    ProblemEntry entry = Tagged("//#miniature\n");
    EXPECT_TRUE(AddTag(entry, "1st prize"));
    EXPECT_FALSE(AddTag(entry, "miniature"));
    EXPECT_FALSE(AddTag(entry, ""));
    EXPECT_TRUE(AddTag(entry, "zeroposition"));
    EXPECT_EQ(Tags(entry), (std::vector<std::string>{"miniature", "1st prize", "zeroposition"}));
    EXPECT_TRUE(RemoveTag(entry, "1st prize"));
    EXPECT_FALSE(RemoveTag(entry, "1st prize"));
    EXPECT_EQ(ReadOne(WriteCollectionText({entry})), entry);
    EXPECT_NE(WriteRecord(entry).find("\n//#TAGS\n//#miniature\n//#zeroposition\n{"), std::string::npos);
}

TEST(Tags, CommandsAskForNewTagsAndBeforeRemoving) {
    ProblemEntry other = Tagged("//#miniature\n//#study\n");
    ProblemEntry entry = ReadOne("2 #2\n" + kRecordBody);
    CRecordingReporter reporter;
    const TUserQuestions questions{&reporter, kEnglish};

    EXPECT_FALSE(RemoveTagAsking(entry, "study", questions));
    EXPECT_TRUE(AddTagAsking(entry, "study", {other, entry}, questions));
    reporter.QueueAnswer(ReportAnswer::No);
    EXPECT_FALSE(AddTagAsking(entry, "brand new", {other, entry}, questions));
    EXPECT_TRUE(AddTagAsking(entry, "brand new", {other, entry}, questions));
    reporter.QueueAnswer(ReportAnswer::No);
    EXPECT_FALSE(RemoveTagAsking(entry, "study", questions));
    EXPECT_TRUE(RemoveTagAsking(entry, "study", questions));
    EXPECT_EQ(Tags(entry), std::vector<std::string>{"brand new"});

    const std::vector<CRecordingReporter::TReport> reports = reporter.Reports();
    ASSERT_EQ(reports.size(), 5u);
    EXPECT_EQ(reports[0].sText, "No tags are assigned to this problem");
    EXPECT_EQ(reports[1].sText, "Are you sure you want to create a new tag:\nbrand new");
    EXPECT_EQ(reports[1].sTitle, "Question");
    EXPECT_EQ(reports[3].sText,
              "Are you sure you want to delete the following tag from this problem?\nstudy");
    EXPECT_EQ(CollectionTags({other, entry}), (std::vector<std::string>{"miniature", "study", "brand new"}));
}

TEST(AwardPlaces, TextsGivePlacesInTableOrder) {
    // clang-format off
    const std::pair<const char*, AwardPlace> cases[] = {
        {"1st Prize", AwardPlace::First}, {"1st-2nd Prize", AwardPlace::First},
        {"Die Schwalbe 1990, 1.-2. Preis", AwardPlace::First}, {"1st-3rd Prize", AwardPlace::First},
        {"2nd-3rd Prize", AwardPlace::Second}, {"2nd-4th Prize", AwardPlace::Second}, {"2. Platz", AwardPlace::Second},
        {"3rd-5th Prize", AwardPlace::Third}, {"3.-4. Preis", AwardPlace::Third}, {"12. Preis", AwardPlace::Unplaced},
        {"Special Prize", AwardPlace::Unplaced}, {"4. Platz", AwardPlace::Unplaced},
        {"1st Hon. Mention", AwardPlace::None}, {"", AwardPlace::None},
    };
    // clang-format on
    for (const auto& [text, place] : cases) EXPECT_EQ(RecognizeAward(text), place) << text;
}

TEST(AwardPlaces, AProblemHoldsOnePlaceTag) {
    ProblemEntry entry = Tagged("//#1st prize\n//#miniature\n//#3rd prize\n");
    AssignAwardPlace(entry, AwardPlace::Second);
    EXPECT_EQ(Tags(entry), (std::vector<std::string>{"miniature", "2nd prize"}));
    AssignAwardPlace(entry, AwardPlace::Unplaced);
    AssignAwardPlace(entry, AwardPlace::Second);
    EXPECT_EQ(Tags(entry), (std::vector<std::string>{"miniature", "2nd prize"}));
}

TEST(ProblemYear, FirstYearAfterABlankTabBracketOrSlash) {
    EXPECT_EQ(FindYear("W. Bone, English Chess Problems 1876"), 1876);
    EXPECT_EQ(FindYear("SuperProblem 09/11/2016; key"), 2016);
    EXPECT_EQ(FindYear("Freie Presse\t(1968)"), 1968);
    EXPECT_EQ(FindYear("x|2001"), 2001);
    EXPECT_EQ(FindYear("PDB: P1234567 3456 1800"), 1800);
    EXPECT_EQ(FindYear("2001 at the start and x1999 or 3999"), std::nullopt);
    EXPECT_EQ(FindYear("(|999 is no year, (1999 is"), 1999);
}

const char* const kDiagramLayout =
    "\\begin{diagram}\n"
    "\\author{J. Halumbirek}\n"
    "\\source{Freie Presse}\n"
    "\\year{1968}\n"
    "\\award{2nd-3rd Prize}\n"
    "\\stip{\\#8}\n"
    "%\\fen{8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4}\n"
    "% PDB-ID: P1234567\n"
    "\\end{diagram}\n";

const char* const kKeyValueLayout =
    "---\n"
    "problemid: 98765\n"
    "stipulation: \"#3\"\n"
    "algebraic:\n"
    "  white: [Kc7, Qg5, Sg4, Pa3]\n"
    "  black: [Kh8, Pa5]\n";

TEST(ForeignProblem, DiagramLayoutGivesRecordWithPlaceTagAndReference) {
    const std::optional<TForeignProblem> problem = RecognizeForeignProblem(kDiagramLayout);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->nMoves, 8);
    EXPECT_EQ(problem->sAward, "2nd-3rd Prize");
    EXPECT_EQ(problem->reference, (TDatabaseReference{ProblemDatabase::Pdb, "P1234567"}));

    const ProblemEntry entry = ForeignProblemEntry(*problem, 7);
    EXPECT_EQ(entry.m_nPlies, 15);
    EXPECT_EQ(entry.m_sDescription, "J. Halumbirek, 1968, 2nd-3rd Prize, PDB: P1234567");
    EXPECT_EQ(Tags(entry), std::vector<std::string>{"2nd prize"});
    EXPECT_EQ(WriteFenPlacement(entry.m_position.board), "8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4");
    EXPECT_EQ(testing::ReadOne(WriteCollectionText({entry})), entry);
}

TEST(ForeignProblem, KeyValueLayoutGivesRecordWithReference) {
    const std::optional<TForeignProblem> problem = RecognizeForeignProblem(kKeyValueLayout);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->nMoves, 3);
    const ProblemEntry entry = ForeignProblemEntry(*problem, 1);
    EXPECT_EQ(WriteFenPlacement(entry.m_position.board), "7k/2K5/8/p5Q1/6N1/P7/8/8");
    EXPECT_EQ(entry.m_sDescription, "YACPDB=98765");
    EXPECT_TRUE(Tags(entry).empty());
    EXPECT_EQ(testing::ReadOne(WriteCollectionText({entry})), entry);
}

TEST(ForeignProblem, OtherTextsAndStipulations) {
    EXPECT_FALSE(RecognizeForeignProblem("1 #2 { FEN: 8/8/8/8/8/8/8/K1k5 }"));
    const std::optional<TForeignProblem> helpmate =
        RecognizeForeignProblem("stipulation: \"h#2\"\nwhite: [Ka1]\nblack: [Kc1]\n");
    ASSERT_TRUE(helpmate);
    EXPECT_FALSE(helpmate->nMoves);
    EXPECT_EQ(ForeignProblemEntry(*helpmate, 1).m_type, ProblemType::Position);
    EXPECT_THROW(RecognizeForeignProblem("white: [Ka1, Xb2]\nblack: [Kc1]\n"), ChessException);
    EXPECT_THROW(RecognizeForeignProblem("%\\fen{not a fen}\n"), ChessException);
}

TEST(DatabaseLinks, PdbIdentifiersTakeTheirLetter) {
    EXPECT_EQ(DatabaseLink(ProblemDatabase::Pdb, "P123"), DatabaseLink(ProblemDatabase::Pdb, "123"));
}

TEST(DatabaseLinks, ReferencesInDescriptions) {
    EXPECT_EQ(FindDatabaseReferences("Bone 1876 (Meson: 4711; PDB: P0500123), YACPDB=99 Albrecht: A12"),
              (std::vector<TDatabaseReference>{{ProblemDatabase::Meson, "4711"},
                                               {ProblemDatabase::Pdb, "P0500123"},
                                               {ProblemDatabase::Yacpdb, "99"},
                                               {ProblemDatabase::Albrecht, "A12"}}));
    EXPECT_TRUE(FindDatabaseReferences("PDB: , no reference").empty());
    for (const TDatabaseReference& reference :
         FindDatabaseReferences("PDB: P1 Meson: 2 YACPDB=3 Albrecht: 4"))
        EXPECT_EQ(FindDatabaseReferences(DescriptionReference(reference)),
                  std::vector<TDatabaseReference>{reference});
}

}  // namespace
}  // namespace moremate
