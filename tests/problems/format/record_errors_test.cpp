#include <gtest/gtest.h>

#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

const std::string kFirstRecord = "1 #2\n{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n";
const std::string kFen = " FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n";

struct TFault {
    const char* sName;
    std::string record;  // read as the second record of a collection
    const char* sMessage;
};

class RecordFaults : public ::testing::TestWithParam<TFault> {};

// Every fault stops reading at its record with its message; the record before stays read.
TEST_P(RecordFaults, StopReadingAtTheirRecord) {
    std::vector<ProblemEntry> entries;
    try {
        ReadCollectionText(kFirstRecord + GetParam().record + "\n" + kFirstRecord, entries, {});
        FAIL() << "no fault raised";
    } catch (const CCollectionReadError& error) {
        EXPECT_STREQ(error.what(), GetParam().sMessage);
        EXPECT_EQ(error.Record(), 2u);
        EXPECT_EQ(error.Problem(), 2u);
        EXPECT_GE(error.Line(), 5);
    }
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].m_nNumber, 1u);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Records, RecordFaults, ::testing::Values(
    // Header and options
    TFault{"StipulationSuffix", "2 #2X {" + kFen + "}", "Unrecognizable option: X"},
    TFault{"MoveCountMissing", "2 # { " + kFen + "}", "Number of moves expected after #: {"},
    TFault{"MoveCountZero", "2 #0 { " + kFen + "}", "Unsupported number of moves: 0"},
    TFault{"MoveCountTooLong", "2 #128 { " + kFen + "}", "Unsupported number of moves: 128"},
    TFault{"UnknownOption", "2 #2 Fast {" + kFen + "}",
        "Opening bracket expected { or unrecognized option encountered: Fast"},
    TFault{"GuiCheckZeroIsNoCount", "2 #2 GUICHECK 0 {" + kFen + "}",
        "Opening bracket expected { or unrecognized option encountered: 0"},
    TFault{"ThreadsNotANumber", "2 #2 THREADS x {" + kFen + "}", "Number expected after THREADS: x"},
    TFault{"ThreadsTooMany", "2 #2 threads 256 {" + kFen + "}", "Number expected after threads: 256"},
    TFault{"RequiresWithoutName", "2 #2 Requires {" + kFen + "}", "Alphanumeric identifier expected. Found: {"},
    TFault{"HeuristicWithoutParameters", "2 #2 sh_keepkingontheedge ON {" + kFen + "}",
        "Unexpected lexem after SH_KEEPKINGONTHEEDGE: ON (expected opening bracket or OFF)"},
    TFault{"HeuristicBracketNotClosed", "2 #2 SH_KEYLINE (A {" + kFen + "}",
        "Unexpected lexems after SH_KEYLINE (closing bracket not found)"},
    TFault{"BestDefenceWithoutBracket", "2 #2 LookForBestDefencesAfter e2 {" + kFen + "}",
        "Unexpected lexem after LookForBestDefencesAfter (expected opening bracket)"},
    TFault{"BestDefenceNotClosed", "2 #2 LookForBestDefencesAfter (e2-e4;e7-e5 {" + kFen + "}",
        "Unexpected lexems after LookForBestDefencesAfter (closing bracket not found)"},
    TFault{"BestDefenceTwoSemicolons", "2 #2 LookForBestDefencesAfter (a;b;c) {" + kFen + "}",
        "Unexpected lexems after LookForBestDefencesAfter (expected exactly one semicolon between the brackets)"},
    TFault{"AnnotationsOutOfOrder", "2 #2\n//@tmpreg=5\n//!VARIANTS\n//!ENDVARIANTS\n{" + kFen + "}",
        "Opening bracket expected."},
    // Description and position
    TFault{"DescriptionColon", "2 #2 { Desc - x\n" + kFen + "}", "Colon ':' expected after description identifier."},
    TFault{"FenColon", "2 #2 { FEN 8/8/8/8/8/8/8/8 }", "Colon ':' expected after FEN identifier."},
    TFault{"ImproperFen", "2 #2 { FEN: 8/8/8 w - - 0 1\n}", "Improper FEN code"},
    TFault{"FenBreaksARule", "2 #2 { FEN: 8/8/8/8/8/8/8/8 w - - 0 1\n}", "Illegal number of kings."},
    TFault{"WhiteListName", "2 #2 { Desc: x\n Black: Ke8 }", "White figures identifier expected (W, WH or WHITE)."},
    TFault{"WhiteListColon", "2 #2 { White Ke1 }", "Colon ':' expected after white figures identifier."},
    TFault{"BlackListName", "2 #2 { White: Ke1 Blk: Ke8 }", "Black figures identifier expected (B, BL or BLACK)."},
    TFault{"BlackListColon", "2 #2 { W: Ke1 B Ke8 }", "Colon expected after black figures identifier."},
    TFault{"WhiteLetter", "2 #2 { W: Xe1 B: Ke8 }", "White figure specification is invalid: Xe1"},
    TFault{"WhiteEntryLength", "2 #2 { W: Ke B: Ke8 }", "White figure specification is invalid: Ke"},
    TFault{"WhiteSquare", "2 #2 { W: Ki9 B: Ke8 }", "White figure position is invalid: Ki9"},
    TFault{"BlackLetter", "2 #2 { W: Ke1 B: Ze8 }", "Black figure specification is invalid: Ze8"},
    TFault{"BlackSquare", "2 #2 { W: Ke1 B: Kz8 }", "Black figure position is invalid: Kz8"},
    TFault{"SquareTwice", "2 #2 { W: Ke1, Ke1 B: Ke8 }", "Square e1 already occupied."},
    TFault{"SquareOfTheOtherColour", "2 #2 { W: Ke1, QE8 B: Ke8 }", "Square e8 already occupied."},
    TFault{"ListBreaksARule", "2 #2 { W: Ke1, Kd1 B: Ke8 }", "Illegal number of kings."},
    // Moves and answer
    TFault{"MovesColon", "2 #2 {" + kFen + " Moves a7-a8 }", "Colon expected after Moves section start."},
    TFault{"MoveIllegal", "2 {" + kFen + " Moves: 1. Qa7-b6 Kc1-d1\n}", "Invalid move in MakeMove() : Kc1-d1"},
    TFault{"AnswerColon", "2 #2 {" + kFen + " Answer a7-f2 }", "Colon expected after correct answer identifier."},
    TFault{"AnswerFrom", "2 #2 {" + kFen + " Answer: a9-f2 }", "Invalid correct answer ('from' element): a9"},
    TFault{"AnswerHyphen", "2 #2 {" + kFen + " A: a7 f2 }", "Hyphen expected to separate correct answer elements"},
    TFault{"AnswerTo", "2 #2 {" + kFen + " A: a7-f }", "Invalid correct answer ('to' element): f"},
    TFault{"AnswerPromotionLetter", "2 #2 {" + kFen + " A: a7-a8X }", "Invalid correct answer: a7-a8X"},
    TFault{"AnswerPromotionToKing", "2 #2 {" + kFen + " A: a7-a8K }", "Invalid correct answer: a7-a8K"},
    TFault{"AnswerComma", "2 #2 {" + kFen + " A: a7-f2 h1-h3 }",
        "Comma should separate various solutions of the problem, but encountered: h1"},
    TFault{"ClosingBracket", "2 #2 {" + kFen + " Solved }", "Closing bracket expected."}),
    [](const auto& info) { return std::string(info.param.sName); });
// clang-format on

TEST(Collections, RecordCutShortOrUnnumbered) {
    EXPECT_EQ(testing::ReadError(kFirstRecord + "2 #2 {" + kFen), "Unexpected end of file.");
    EXPECT_EQ(testing::ReadError(kFirstRecord + "2 #2 NoMirror"), "Unexpected end of file.");
    EXPECT_EQ(testing::ReadError(kFirstRecord + "x #2 {" + kFen + "}"), "Problem number expected. Found: x");
}

}  // namespace
}  // namespace moremate
