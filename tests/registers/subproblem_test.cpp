// The sub-problem store: one result per position and level, contradictions refused, and with
// subsumption the results implied by a new one erased.
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "core/chess_exception.h"
#include "register_test_support.h"
#include "registers/aggregated_register.h"

namespace moremate {
namespace {

using testing::NumberedKey;

const TChessboardRegisterItem kPosition = NumberedKey(1);

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

struct TContradictionCase {
    const char* name;
    int languageId;
    bool bDefence;
    const char* message;
};

class SubproblemContradiction : public ::testing::TestWithParam<TContradictionCase> {};

TEST_P(SubproblemContradiction, ThrowsInTheInterfaceLanguage) {
    const TContradictionCase& c = GetParam();
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.SetServices({.log = {}, .pReporter = nullptr, .languageId = c.languageId, .bCheckCoherency = false});
    reg.Insert(7, kPosition, true, 0.0, 0);
    try {
        if (c.bDefence) {
            reg.InsertDefence(7, kPosition, false, 0.0, 0);
        } else {
            reg.Insert(7, kPosition, false, 0.0, 0);
        }
        FAIL() << "no exception";
    } catch (const ChessException& e) {
        EXPECT_STREQ(e.what(), c.message);
    }
    EXPECT_EQ(reg.LookupSubproblem(7, kPosition), 1);
    EXPECT_EQ(reg.SubproblemCount(), 1u);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Register, SubproblemContradiction, ::testing::Values(
    TContradictionCase{"English", kEnglish, false, "Incoherent information in TChessboardRegister::Insert()"},
    TContradictionCase{"EnglishDefence", kEnglish, true, "Incoherent information in TChessboardRegister::Insert()"},
    TContradictionCase{"Ukrainian", kUkrainian, false, "Incoherent information in TChessboardRegister::Insert()"},
    TContradictionCase{"Polish", kPolish, false, "Sprzeczna informacja w TChessboardRegister::Insert()"},
    TContradictionCase{"PolishDefence", kPolish, true, "Sprzeczna informacja w TChessboardRegister::InsertDefence()"}),
    [](const auto& info) { return std::string(info.param.name); });
// clang-format on

struct TStored {
    uint16_t n;
    bool bMate;
};

struct TSubsumptionCase {
    const char* name;
    std::vector<TStored> before;  // results of kPosition stored first
    TStored added;
    std::map<uint16_t, uint8_t> after;  // level -> LookupSubproblem afterwards
};

class Subsumption : public ::testing::TestWithParam<TSubsumptionCase> {};

TEST_P(Subsumption, ErasesOnlyImpliedResultsAtOddLevels) {
    const TSubsumptionCase& c = GetParam();
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.SetSubsumption(true);
    for (const TStored& s : c.before) reg.Insert(s.n, kPosition, s.bMate, 0.0, 0);
    reg.Insert(11, NumberedKey(2), false, 0.0, 0);  // another position is never touched
    reg.Insert(c.added.n, kPosition, c.added.bMate, 0.0, 0);
    uint32_t nStored = 1;
    for (const auto& [n, result] : c.after) {
        EXPECT_EQ(reg.LookupSubproblem(n, kPosition), result) << "level " << n;
        nStored += result != kSubproblemUnknown;
    }
    EXPECT_EQ(reg.LookupSubproblem(11, NumberedKey(2)), 0);
    EXPECT_EQ(reg.SubproblemCount(), nStored);
}

constexpr uint8_t kUnknown = kSubproblemUnknown;

// clang-format off
INSTANTIATE_TEST_SUITE_P(Register, Subsumption, ::testing::Values(
    TSubsumptionCase{"NoMateErasesSmallerOddNoMates", {{5, false}, {6, false}, {7, false}, {11, false}}, {9, false},
        {{5, kUnknown}, {6, 0}, {7, kUnknown}, {9, 0}, {11, 0}}},
    TSubsumptionCase{"NoMateKeepsMates", {{5, true}, {7, false}}, {9, false}, {{5, 1}, {7, kUnknown}, {9, 0}}},
    TSubsumptionCase{"MateErasesLargerOddMates", {{3, true}, {7, true}, {8, true}, {9, true}}, {5, true}, {{3, 1}, {5,
        1}, {7, kUnknown}, {8, 1}, {9, kUnknown}}},
    TSubsumptionCase{"MateKeepsNoMates", {{7, false}, {9, true}}, {5, true}, {{5, 1}, {7, 0}, {9, kUnknown}}}),
    [](const auto& info) { return std::string(info.param.name); });
// clang-format on

TEST(RegisterSubsumption, OffKeepsEveryResult) {
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.Insert(5, kPosition, false, 0.0, 0);
    reg.Insert(9, kPosition, false, 0.0, 0);
    EXPECT_EQ(reg.LookupSubproblem(5, kPosition), 0);
    EXPECT_EQ(reg.SubproblemCount(), 2u);
}

}  // namespace
}  // namespace moremate
