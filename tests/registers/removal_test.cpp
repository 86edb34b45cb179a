// What RemoveNMovers takes from each kind of register, and how doubtfulness registers go.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"

namespace moremate {
namespace {

using testing::CLogRecorder;
using testing::NumberedKey;

struct TBoundsCase {
    uint16_t nMovesMate;
    uint16_t nMovesNoMate;
    uint16_t n;
    bool bRemovedFromMain;          // mate / no-mate store: MovesMate <= n, MovesNoMate <= n - 2
    bool bRemovedFromDoubtfulness;  // doubtfulness store: both <= n
};

class RemovalBounds : public ::testing::TestWithParam<TBoundsCase> {};

TChessboardRegisterEntry EntryOf(const TBoundsCase& c) {
    TChessboardRegisterEntry entry;
    entry.key = NumberedKey(1);
    entry.MovesMate = c.nMovesMate;
    entry.MovesNoMate = c.nMovesNoMate;
    return entry;
}

TEST_P(RemovalBounds, MainStoreKeepsNoMatesTwoLevelsLonger) {
    const TBoundsCase& c = GetParam();
    TTemporaryChessboardRegister<0> reg(1000, 16);
    reg.Merge(EntryOf(c));
    EXPECT_EQ(reg.RemoveNMovers(c.n), c.bRemovedFromMain ? 1u : 0u);
    EXPECT_EQ(reg.Find(NumberedKey(1)).has_value(), !c.bRemovedFromMain);
    EXPECT_EQ(reg.ElementCount(), c.bRemovedFromMain ? 0u : 1u);
}

TEST_P(RemovalBounds, DoubtfulnessStoreUsesOneBound) {
    const TBoundsCase& c = GetParam();
    TTemporaryChessboardRegister<1> reg(1000, 16);
    reg.Merge(EntryOf(c));
    EXPECT_EQ(reg.RemoveNMovers(c.n), c.bRemovedFromDoubtfulness ? 1u : 0u);
    EXPECT_EQ(reg.ElementCount(), c.bRemovedFromDoubtfulness ? 0u : 1u);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Register, RemovalBounds, ::testing::Values(
    TBoundsCase{5, 0, 5, true, true}, TBoundsCase{7, 0, 5, false, false}, TBoundsCase{0, 3, 5, true, true},
    TBoundsCase{0, 4, 5, false, true}, TBoundsCase{0, 5, 5, false, true}, TBoundsCase{0, 6, 5, false, false},
    TBoundsCase{5, 3, 5, true, true}, TBoundsCase{5, 4, 5, false, true}, TBoundsCase{0, 1, 1, false, true},
    TBoundsCase{1, 0, 1, true, true}, TBoundsCase{0, 1, 3, true, true}, TBoundsCase{0, 2, 2, false, true}));
// clang-format on

TEST(RegisterRemoveNMovers, AggregatedRunsOverEveryRegisterAndLogs) {
    CLogRecorder log;
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.SetServices(
        {.log = log.Sink(), .pReporter = nullptr, .languageId = kEnglish, .bCheckCoherency = false});
    reg.Insert(5, NumberedKey(1), true);
    reg.Insert(9, NumberedKey(2), true);
    reg.InsertDoubtful(ConfigurationKey(1, 0), 5, NumberedKey(3), true);
    reg.InsertDoubtful(ConfigurationKey(2, 0), 5, NumberedKey(4), false);
    reg.InsertDoubtful(ConfigurationKey(2, 0), 9, NumberedKey(5), true);
    EXPECT_EQ(reg.ElementCount(), 5u);
    EXPECT_EQ(reg.RemoveNMovers(5), 3u);
    EXPECT_EQ(reg.ElementCount(), 2u);
    EXPECT_EQ(reg.DoubtfulElementCount(), 1u);
    EXPECT_TRUE(reg.FindDoubtful(ConfigurationKey(2, 0), NumberedKey(5)));
    const std::vector<std::string> expected = {
        "TAggregatedTemporaryChessboardRegister::RemoveNMovers start.",
        "TTemporaryChessboardRegister::RemoveNMovers start. n=5",
        "TTemporaryChessboardRegister::RemoveNMovers complete.",
        "TTemporaryChessboardRegister::RemoveNMovers start. n=5",
        "TTemporaryChessboardRegister::RemoveNMovers complete.",
        "TTemporaryChessboardRegister::RemoveNMovers start. n=5",
        "TTemporaryChessboardRegister::RemoveNMovers complete.",
        "TAggregatedTemporaryChessboardRegister::RemoveNMovers complete.",
    };
    EXPECT_EQ(log.Lines(), expected);
}

TEST(RegisterDoubtfulness, StoresPerConfiguration) {
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    const uint64_t kFirst = ConfigurationKey(0x11, 7);
    const uint64_t kSecond = ConfigurationKey(0x11, 8);
    EXPECT_EQ(kFirst, 0x0000'0007'0000'0011u);
    EXPECT_TRUE(reg.InsertDoubtful(kFirst, 7, NumberedKey(1), true));
    EXPECT_TRUE(reg.InsertDoubtful(kFirst, 5, NumberedKey(1), false));
    EXPECT_TRUE(reg.InsertDoubtful(kSecond, 9, NumberedKey(1), false));
    const auto first = reg.FindDoubtful(kFirst, NumberedKey(1));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->MovesMate, 7);
    EXPECT_EQ(first->MovesNoMate, 5);
    EXPECT_EQ(reg.FindDoubtful(kSecond, NumberedKey(1))->MovesNoMate, 9);
    EXPECT_FALSE(reg.FindDoubtful(ConfigurationKey(0x11, 9), NumberedKey(1)));
    EXPECT_FALSE(reg.Find(NumberedKey(1)));
    EXPECT_EQ(reg.DoubtfulConfigurations(), (std::vector<uint64_t>{kFirst, kSecond}));
    EXPECT_EQ(reg.DoubtfulElementCount(), 2u);
    EXPECT_EQ(reg.ElementCount(), 2u);
}

TEST(RegisterRemoveDoubtful, PinnedConfigurationSurvivesOncePerPin) {
    CLogRecorder log;
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.SetServices(
        {.log = log.Sink(), .pReporter = nullptr, .languageId = kEnglish, .bCheckCoherency = false});
    for (uint32_t i = 0; i < 3; ++i) reg.InsertDoubtful(ConfigurationKey(5, 2), 7, NumberedKey(i), true);
    reg.Insert(7, NumberedKey(9), true);
    reg.PinDoubtful(5, 2);
    reg.PinDoubtful(5, 2);
    EXPECT_EQ(reg.PinCount(ConfigurationKey(5, 2)), 2u);

    EXPECT_EQ(reg.RemoveDoubtful(5, 2), 0u);
    EXPECT_EQ(reg.PinCount(ConfigurationKey(5, 2)), 1u);
    EXPECT_EQ(reg.RemoveDoubtful(5, 2), 0u);
    EXPECT_EQ(reg.ElementCount(), 4u);
    EXPECT_EQ(reg.RemoveDoubtful(5, 2), 3u);
    EXPECT_EQ(reg.ElementCount(), 1u);
    EXPECT_FALSE(reg.FindDoubtful(ConfigurationKey(5, 2), NumberedKey(0)));
    EXPECT_EQ(reg.RemoveDoubtful(5, 2), 0u);  // nothing left
    EXPECT_EQ(log.Count("RemoveDoubtful start."), 4);
    EXPECT_EQ(log.Count("RemoveDoubtful complete."), 4);
    EXPECT_EQ(log.Lines().front(), "RemoveDoubtful start.");
}

TEST(RegisterRemoveDoubtful, AllUnpinnedLeavesPinnedOnes) {
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.InsertDoubtful(ConfigurationKey(1, 0), 7, NumberedKey(1), true);
    reg.InsertDoubtful(ConfigurationKey(1, 0), 7, NumberedKey(2), true);
    reg.InsertDoubtful(ConfigurationKey(2, 0), 7, NumberedKey(1), true);
    reg.InsertDoubtful(ConfigurationKey(3, 0), 7, NumberedKey(1), true);
    reg.PinDoubtful(2, 0);
    EXPECT_EQ(reg.RemoveAllUnpinnedDoubtful(), 3u);
    EXPECT_EQ(reg.DoubtfulConfigurations(), (std::vector<uint64_t>{ConfigurationKey(2, 0)}));
    EXPECT_EQ(reg.PinCount(ConfigurationKey(2, 0)), 1u);  // skipped, not consumed
    EXPECT_EQ(reg.DoubtfulElementCount(), 1u);
}

}  // namespace
}  // namespace moremate
