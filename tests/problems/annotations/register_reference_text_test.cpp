// Pinning and unpinning a register edit the record's reference line and nothing else.
#include <gtest/gtest.h>

#include "problems/annotations/register_reference.h"
#include "problems/annotations/register_reference_text.h"
#include "tests/problems/problem_text.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

std::optional<uint32_t> ReferenceOf(const std::string& text, uint32_t nProblem) {
    for (const ProblemEntry& entry : testing::ReadAll(text))
        if (entry.m_nNumber == nProblem) return TmpRegNumber(entry);
    return std::nullopt;
}

TEST(RegisterReferenceText, PinThenUnpinGivesBackTheFileByteForByte) {
    const std::string kFen = "\tFEN: 8/8/8/8/8/1K6/8/k1Q5 w - - 0 1\n";
    const struct {
        const char* name;
        std::string text;
        std::string pinned;  // the text with problem 2 pinned to register 7
    } cases[] = {
        {"canonical", "UTF-8\n\n\n1 #2\n{\n" + kFen + "}\n\n2 #2\n{\n" + kFen + "}\n",
         "UTF-8\n\n\n1 #2\n{\n" + kFen + "}\n\n2 #2\n//@tmpreg=7\n{\n" + kFen + "}\n"},
        {"hand-written", "UTF-8\n/* my notes { } */\n2 #2 NoMirror { " + kFen + " } // done\n",
         "UTF-8\n/* my notes { } */\n2 #2 NoMirror //@tmpreg=7\n{ " + kFen + " } // done\n"},
        {"after the tags", "2 #2\n//#TAGS\n//#1st prize\n{\n" + kFen + "}",
         "2 #2\n//#TAGS\n//#1st prize\n//@tmpreg=7\n{\n" + kFen + "}"},
        {"the last of two records", "2 #2\n{\n" + kFen + "}\n2 #3\n{\n" + kFen + "}\n",
         "2 #2\n{\n" + kFen + "}\n2 #3\n//@tmpreg=7\n{\n" + kFen + "}\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string pinned = WithRegisterReference(c.text, 2, 7);
        EXPECT_EQ(pinned, c.pinned);
        EXPECT_EQ(ReferenceOf(pinned, 2), 7u);
        EXPECT_EQ(WithRegisterReference(pinned, 2, std::nullopt), c.text);
    }
}

TEST(RegisterReferenceText, AReferenceIsReplacedInItsLine) {
    const std::string text = "2 #2\n//@TmpReg=3\r\n{ FEN: 8/8/8/8/8/1K6/8/k1Q5 w - - 0 1\n}";
    const std::string repinned = WithRegisterReference(text, 2, 12);
    EXPECT_EQ(repinned, "2 #2\n//@tmpreg=12\n{ FEN: 8/8/8/8/8/1K6/8/k1Q5 w - - 0 1\n}");
    EXPECT_EQ(ReferenceOf(repinned, 2), 12u);
    EXPECT_EQ(test::ErrorOf([&] { WithRegisterReference(text, 9, 1); }), "Problem 9 not found");
}

}  // namespace
}  // namespace moremate
