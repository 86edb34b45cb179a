// What a sequence of results leaves in an entry, and what the entry answers to the search.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"
#include "settings/reporter.h"

namespace moremate {
namespace {

using testing::KeyOf;

struct TResult {
    uint16_t n;
    bool bMate;
};

struct TSequenceCase {
    const char* name;
    std::vector<TResult> results;
    TSolvingMode mode;
    uint16_t nMovesMate;
    uint16_t nMovesNoMate;
    bool bLastStored;  // what the last Insert returned
};

const TChessboardRegisterItem kPosition =
    KeyOf({{3, kWhite | kKing}, {59, kBlack | kKing}, {0, kWhite | kRook}});

class InsertSequence : public ::testing::TestWithParam<TSequenceCase> {};

TEST_P(InsertSequence, LeavesTheExpectedEntry) {
    const TSequenceCase& c = GetParam();
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    bool bStored = false;
    for (const TResult& r : c.results) bStored = reg.Insert(r.n, kPosition, r.bMate, c.mode);
    const std::optional<TChessboardRegisterEntry> entry = reg.Find(kPosition);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->MovesMate, c.nMovesMate);
    EXPECT_EQ(entry->MovesNoMate, c.nMovesNoMate);
    EXPECT_EQ(bStored, c.bLastStored);
    EXPECT_EQ(reg.ElementCount(), 1u);
}

constexpr TSolvingMode kNormal = TSolvingMode::Normal;
constexpr TSolvingMode kSpecial = TSolvingMode::Special;

// clang-format off
INSTANTIATE_TEST_SUITE_P(Register, InsertSequence, ::testing::Values(
    TSequenceCase{"FirstMate", {{5, true}}, kNormal, 5, 0, true},
    TSequenceCase{"FirstNoMate", {{6, false}}, kNormal, 0, 6, true},
    TSequenceCase{"NoMateAboveMateIsRepairedByTwo", {{5, true}, {7, false}}, kNormal, 5, 3, true},
    TSequenceCase{"NoMateEqualToMateOneIsRepairedToZero", {{1, true}, {1, false}}, kNormal, 1, 0, false},
    TSequenceCase{"MateTwoRepairsToZero", {{4, false}, {2, true}}, kNormal, 2, 0, true},
    TSequenceCase{"MateFoundBelowNoMateRepairs", {{9, false}, {7, true}}, kNormal, 7, 5, true},
    TSequenceCase{"LongerMateKeepsShorter", {{5, true}, {7, true}}, kNormal, 5, 0, false},
    TSequenceCase{"ShorterMateReplacesLonger", {{7, true}, {5, true}}, kNormal, 5, 0, true},
    TSequenceCase{"SmallerNoMateKeepsLarger", {{4, false}, {2, false}}, kNormal, 0, 4, false},
    TSequenceCase{"LargerNoMateReplacesSmaller", {{2, false}, {4, false}}, kNormal, 0, 4, true},
    TSequenceCase{"CoherentPairIsKept", {{9, true}, {7, false}}, kNormal, 9, 7, true},
    TSequenceCase{"RepeatedResultChangesNothing", {{7, false}, {7, false}}, kNormal, 0, 7, false},
    TSequenceCase{"SpecialModeKeepsIncoherentPair", {{5, true}, {7, false}}, kSpecial, 5, 7, true},
    TSequenceCase{"SpecialModeStillKeepsShorterMate", {{7, true}, {5, true}, {9, true}}, kSpecial, 5, 0, false}),
    [](const auto& info) { return std::string(info.param.name); });
// clang-format on

struct TAnswerCase {
    uint16_t nMovesMate;
    uint16_t nMovesNoMate;
    uint16_t n;
    TRegisterAnswer answer;
};

class AnswerFromEntry : public ::testing::TestWithParam<TAnswerCase> {};

TEST_P(AnswerFromEntry, SettlesOnlyWhatTheValuesProve) {
    const TAnswerCase& c = GetParam();
    TChessboardRegisterEntry entry;
    entry.MovesMate = c.nMovesMate;
    entry.MovesNoMate = c.nMovesNoMate;
    EXPECT_EQ(AnswerFor(entry, c.n), c.answer);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Register, AnswerFromEntry, ::testing::Values(
    TAnswerCase{5, 0, 5, TRegisterAnswer::Mate}, TAnswerCase{5, 0, 7, TRegisterAnswer::Mate},
    TAnswerCase{5, 0, 3, TRegisterAnswer::Unknown}, TAnswerCase{0, 7, 7, TRegisterAnswer::NoMate},
    TAnswerCase{0, 7, 5, TRegisterAnswer::NoMate}, TAnswerCase{0, 7, 9, TRegisterAnswer::Unknown},
    TAnswerCase{9, 7, 9, TRegisterAnswer::Mate}, TAnswerCase{9, 7, 7, TRegisterAnswer::NoMate},
    TAnswerCase{9, 5, 7, TRegisterAnswer::Unknown}, TAnswerCase{0, 0, 1, TRegisterAnswer::Unknown}));
// clang-format on

TEST(RegisterLookup, AbsentPositionIsUnknown) {
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.Insert(5, kPosition, true);
    const TChessboardRegisterItem other = KeyOf({{3, kWhite | kKing}, {59, kBlack | kKing}});
    EXPECT_FALSE(reg.Find(other));
    EXPECT_EQ(reg.Answer(5, other), TRegisterAnswer::Unknown);
    EXPECT_EQ(reg.Answer(5, kPosition), TRegisterAnswer::Mate);
}

// Checking: incoherent entries of the special modes are shown, once per insertion, and kept.
struct TCheckingCase {
    const char* name;
    TSolvingMode mode;
    bool bCheckCoherency;
    size_t nReports;
};

class CoherencyChecking : public ::testing::TestWithParam<TCheckingCase> {};

TEST_P(CoherencyChecking, ReportsOnlyUnrepairedEntries) {
    const TCheckingCase& c = GetParam();
    CRecordingReporter reporter;
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.SetServices(
        {.log = {}, .pReporter = &reporter, .languageId = kEnglish, .bCheckCoherency = c.bCheckCoherency});
    reg.Insert(5, kPosition, true, c.mode);
    reg.Insert(7, kPosition, false, c.mode);
    EXPECT_EQ(reporter.Reports().size(), c.nReports);
}

INSTANTIATE_TEST_SUITE_P(Register, CoherencyChecking,
                         ::testing::Values(TCheckingCase{"SpecialChecked", kSpecial, true, 1},
                                           TCheckingCase{"SpecialUnchecked", kSpecial, false, 0},
                                           TCheckingCase{"NormalIsRepairedNotReported", kNormal, true, 0}),
                         [](const auto& info) { return std::string(info.param.name); });

// The report shows the values and the position; an invalid position by its placement only.
TEST(RegisterCoherencyChecking, ReportShowsValuesAndPosition) {
    const struct {
        TChessboardRegisterItem key;
        int languageId;
        const char* text;
    } cases[] = {
        {kPosition, kPolish,
         "\n\nnMoves=7, bThereIsMate=0\nMovesMate=5, MovesNoMate=7\n3k4/8/8/8/8/8/8/R2K4 w - - 0 1"},
        {KeyOf({{0, kWhite | kRook}}), kEnglish,
         "\n\nnMoves=7, bThereIsMate=0\nMovesMate=5, MovesNoMate=7\n8/8/8/8/8/8/8/R7"},
    };
    for (const auto& c : cases) {
        CRecordingReporter reporter;
        TAggregatedTemporaryChessboardRegister reg(1000, 16);
        reg.SetServices(
            {.log = {}, .pReporter = &reporter, .languageId = c.languageId, .bCheckCoherency = true});
        reg.Insert(5, c.key, true, kSpecial);
        reg.Insert(7, c.key, false, kSpecial);
        const auto reports = reporter.Reports();
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports[0].sTitle, "Error");
        EXPECT_EQ(reports[0].sText, c.text);
    }
}

}  // namespace
}  // namespace moremate
