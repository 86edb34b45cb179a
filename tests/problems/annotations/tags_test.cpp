#include "problems/annotations/problem_tags.h"

#include <gtest/gtest.h>

#include "problems/annotations/award_places.h"
#include "problems/annotations/problem_year.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::ReadOne;

const std::string kRecordBody = "{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n";

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
}

}  // namespace
}  // namespace moremate
