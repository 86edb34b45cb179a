// What a sequence of results leaves in an entry, and what the entry answers to the search; the
// sub-problem store.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"
#include "settings/reporter.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using testing::KeyOf;
using testing::NumberedKey;

const TChessboardRegisterItem kPosition =
    KeyOf({{3, kWhite | kKing}, {59, kBlack | kKing}, {0, kWhite | kRook}});
constexpr TSolvingMode kNormal = TSolvingMode::Normal, kSpecial = TSolvingMode::Special;

TEST(RegisterInsertSequence, LeavesTheExpectedEntry) {
    // clang-format off
    const struct { const char* name; std::vector<std::pair<uint16_t, bool>> results; TSolvingMode mode;
        uint16_t nMovesMate, nMovesNoMate; bool bLastStored; } cases[] = {
        {"FirstMate", {{5, true}}, kNormal, 5, 0, true}, {"FirstNoMate", {{6, false}}, kNormal, 0, 6, true},
        {"NoMateAboveMateIsRepairedByTwo", {{5, true}, {7, false}}, kNormal, 5, 3, true},
        {"NoMateEqualToMateOneIsRepairedToZero", {{1, true}, {1, false}}, kNormal, 1, 0, false},
        {"MateTwoRepairsToZero", {{4, false}, {2, true}}, kNormal, 2, 0, true},
        {"MateFoundBelowNoMateRepairs", {{9, false}, {7, true}}, kNormal, 7, 5, true},
        {"LongerMateKeepsShorter", {{5, true}, {7, true}}, kNormal, 5, 0, false},
        {"ShorterMateReplacesLonger", {{7, true}, {5, true}}, kNormal, 5, 0, true},
        {"SmallerNoMateKeepsLarger", {{4, false}, {2, false}}, kNormal, 0, 4, false},
        {"LargerNoMateReplacesSmaller", {{2, false}, {4, false}}, kNormal, 0, 4, true},
        {"CoherentPairIsKept", {{9, true}, {7, false}}, kNormal, 9, 7, true},
        {"RepeatedResultChangesNothing", {{7, false}, {7, false}}, kNormal, 0, 7, false},
        {"SpecialModeKeepsIncoherentPair", {{5, true}, {7, false}}, kSpecial, 5, 7, true},
        {"SpecialModeStillKeepsShorterMate", {{7, true}, {5, true}, {9, true}}, kSpecial, 5, 0, false},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TAggregatedTemporaryChessboardRegister reg(1000, 16);
        bool bStored = false;
        for (const auto& [n, bMate] : c.results) bStored = reg.Insert(n, kPosition, bMate, c.mode);
        const std::optional<TChessboardRegisterEntry> entry = reg.Find(kPosition);
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->MovesMate, c.nMovesMate);
        EXPECT_EQ(entry->MovesNoMate, c.nMovesNoMate);
        EXPECT_EQ(bStored, c.bLastStored);
        EXPECT_EQ(reg.ElementCount(), 1u);
    }
}

TEST(RegisterLookup, AnswersOnlyWhatTheValuesProve) {
    using enum TRegisterAnswer;
    // clang-format off
    const struct { uint16_t nMovesMate, nMovesNoMate, n; TRegisterAnswer answer; } cases[] = {
        {5, 0, 5, Mate}, {5, 0, 7, Mate}, {5, 0, 3, Unknown}, {0, 7, 7, NoMate}, {0, 7, 5, NoMate},
        {0, 7, 9, Unknown}, {9, 7, 9, Mate}, {9, 7, 7, NoMate}, {9, 5, 7, Unknown}, {0, 0, 1, Unknown},
    };
    // clang-format on
    for (const auto& c : cases) {
        TChessboardRegisterEntry entry;
        entry.MovesMate = c.nMovesMate;
        entry.MovesNoMate = c.nMovesNoMate;
        EXPECT_EQ(AnswerFor(entry, c.n), c.answer) << c.nMovesMate << "/" << c.nMovesNoMate << " at " << c.n;
    }
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.Insert(5, kPosition, true);
    const TChessboardRegisterItem other = KeyOf({{3, kWhite | kKing}, {59, kBlack | kKing}});
    EXPECT_FALSE(reg.Find(other));
    EXPECT_EQ(reg.Answer(5, other), Unknown);
    EXPECT_EQ(reg.Answer(5, kPosition), Mate);
}

// Checking: incoherent entries of the special modes are shown, once per insertion, and kept; the
// report shows the values and the position, an invalid position by its placement only.
TEST(RegisterCoherencyChecking, ReportsOnlyUnrepairedEntries) {
    const std::string values = "\n\nnMoves=7, bThereIsMate=0\nMovesMate=5, MovesNoMate=7\n";
    // clang-format off
    const struct { TChessboardRegisterItem key; TSolvingMode mode; bool bCheck; int languageId; std::string text; }
        cases[] = {
        {kPosition, kSpecial, true, kPolish, values + "3k4/8/8/8/8/8/8/R2K4 w - - 0 1"},
        {KeyOf({{0, kWhite | kRook}}), kSpecial, true, kEnglish, values + "8/8/8/8/8/8/8/R7"},
        {kPosition, kSpecial, false, kEnglish, ""}, {kPosition, kNormal, true, kEnglish, ""},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        CRecordingReporter reporter;
        TAggregatedTemporaryChessboardRegister reg(1000, 16);
        reg.SetServices(
            {.log = {}, .pReporter = &reporter, .languageId = c.languageId, .bCheckCoherency = c.bCheck});
        reg.Insert(5, c.key, true, c.mode);
        reg.Insert(7, c.key, false, c.mode);
        const auto reports = reporter.Reports();
        ASSERT_EQ(reports.size(), c.text.empty() ? 0u : 1u);
        if (reports.empty()) continue;
        EXPECT_EQ(reports[0].sTitle, "Error");
        EXPECT_EQ(reports[0].sText, c.text);
    }
}

// The sub-problem store: one result per position and level, contradictions refused, and with
// subsumption the results implied by a new one erased.
TEST(RegisterSubproblem, StoresResultAndPayloadOnce) {
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    EXPECT_EQ(reg.LookupSubproblem(7, kPosition), kSubproblemUnknown);
    reg.Insert(7, kPosition, true, 2.5, 42);
    reg.Insert(7, kPosition, true, 9.0, 99);  // the same result again changes nothing
    reg.InsertDefence(9, kPosition, false, 1.0, 1);
    EXPECT_EQ(reg.LookupSubproblem(7, kPosition), 1);
    EXPECT_EQ(reg.LookupSubproblem(9, kPosition), 0);
    EXPECT_EQ(reg.LookupSubproblem(5, kPosition), kSubproblemUnknown);
    EXPECT_EQ(reg.LookupSubproblem(7, NumberedKey(2)), kSubproblemUnknown);
    const auto info = reg.FindSubproblem(7, kPosition);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->dValue, 2.5);
    EXPECT_EQ(info->nValue, 42u);
    EXPECT_EQ(reg.SubproblemCount(), 2u);
    EXPECT_EQ(reg.ElementCount(), 2u);
    // The hashed store is a different store.
    EXPECT_FALSE(reg.Find(kPosition));
}

TEST(RegisterSubproblem, ContradictionThrowsInTheInterfaceLanguage) {
    const char* english = "Incoherent information in TChessboardRegister::Insert()";
    // clang-format off
    const struct { int languageId; bool bDefence; const char* message; } cases[] = {
        {kEnglish, false, english}, {kEnglish, true, english}, {kUkrainian, false, english},
        {kPolish, false, "Sprzeczna informacja w TChessboardRegister::Insert()"},
        {kPolish, true, "Sprzeczna informacja w TChessboardRegister::InsertDefence()"},
    };
    // clang-format on
    for (const auto& c : cases) {
        TAggregatedTemporaryChessboardRegister reg(1000, 16);
        reg.SetServices({.log = {}, .languageId = c.languageId});
        reg.Insert(7, kPosition, true, 0.0, 0);
        EXPECT_EQ(test::ErrorOf([&] {
                      if (c.bDefence) reg.InsertDefence(7, kPosition, false, 0.0, 0);
                      if (!c.bDefence) reg.Insert(7, kPosition, false, 0.0, 0);
                  }),
                  c.message);
        EXPECT_EQ(reg.LookupSubproblem(7, kPosition), 1);
        EXPECT_EQ(reg.SubproblemCount(), 1u);
    }
}

// With subsumption a new result erases the results it implies at odd levels, of its position only.
TEST(RegisterSubsumption, ErasesOnlyImpliedResultsAtOddLevels) {
    struct TStored {
        uint16_t n;
        bool bMate;
    };
    constexpr uint8_t kUnknown = kSubproblemUnknown;
    // `before`: results of kPosition stored first; `after`: level -> LookupSubproblem afterwards.
    // clang-format off
    const struct { std::vector<TStored> before; TStored added; std::map<uint16_t, uint8_t> after; } cases[] = {
        {{{5, false}, {6, false}, {7, false}, {11, false}}, {9, false}, {{5, kUnknown}, {6, 0}, {7, kUnknown}, {9, 0},
         {11, 0}}},
        {{{5, true}, {7, false}}, {9, false}, {{5, 1}, {7, kUnknown}, {9, 0}}},
        {{{3, true}, {7, true}, {8, true}, {9, true}}, {5, true}, {{3, 1}, {5, 1}, {7, kUnknown}, {8, 1},
         {9, kUnknown}}},
        {{{7, false}, {9, true}}, {5, true}, {{5, 1}, {7, 0}, {9, kUnknown}}},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.added.n << (c.added.bMate ? " mate" : " no mate"));
        TAggregatedTemporaryChessboardRegister reg(1000, 16);
        reg.SetSubsumption(true);
        for (const TStored& s : c.before) reg.Insert(s.n, kPosition, s.bMate, 0.0, 0);
        reg.Insert(11, NumberedKey(2), false, 0.0, 0);
        reg.Insert(c.added.n, kPosition, c.added.bMate, 0.0, 0);
        uint32_t nStored = 1;
        for (const auto& [n, result] : c.after) {
            EXPECT_EQ(reg.LookupSubproblem(n, kPosition), result) << "level " << n;
            nStored += result != kSubproblemUnknown;
        }
        EXPECT_EQ(reg.LookupSubproblem(11, NumberedKey(2)), 0);
        EXPECT_EQ(reg.SubproblemCount(), nStored);
    }
}

TEST(RegisterSubsumption, OffKeepsEveryResult) {
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.Insert(5, kPosition, false, 0.0, 0);
    reg.Insert(9, kPosition, false, 0.0, 0);
    EXPECT_EQ(reg.LookupSubproblem(5, kPosition), 0);
    EXPECT_EQ(reg.SubproblemCount(), 2u);
}

}  // namespace
}  // namespace moremate
