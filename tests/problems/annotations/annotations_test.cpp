#include <gtest/gtest.h>

#include "problems/annotations/problem_tags.h"
#include "problems/annotations/problem_variants.h"
#include "problems/annotations/register_reference.h"
#include "problems/annotations/sort_indications.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::ReadOne;

const std::string kRecordBody = "{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n";

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

}  // namespace
}  // namespace moremate
