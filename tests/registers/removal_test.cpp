// What RemoveNMovers takes from each kind of register, how doubtfulness registers go, and what
// EmptySomeDataWhenRegisterFull empties first, when it stops and how it is serialised.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"
#include "registers/register_emptying.h"

namespace moremate {
namespace {

using testing::CLogRecorder;
using testing::NumberedKey;

// A mate / no-mate store keeps no-mates two levels longer (MovesMate <= n, MovesNoMate <= n - 2); a
// doubtfulness store uses one bound for both.
TEST(RegisterRemovalBounds, MainStoreKeepsNoMatesTwoLevelsLonger) {
    // clang-format off
    const struct { uint16_t nMovesMate, nMovesNoMate, n; bool bFromMain, bFromDoubtfulness; } cases[] = {
        {5, 0, 5, true, true}, {7, 0, 5, false, false}, {0, 3, 5, true, true}, {0, 4, 5, false, true},
        {0, 5, 5, false, true}, {0, 6, 5, false, false}, {5, 3, 5, true, true}, {5, 4, 5, false, true},
        {0, 1, 1, false, true}, {1, 0, 1, true, true}, {0, 1, 3, true, true}, {0, 2, 2, false, true},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.nMovesMate << "/" << c.nMovesNoMate << " n=" << c.n);
        TChessboardRegisterEntry entry;
        entry.key = NumberedKey(1);
        entry.MovesMate = c.nMovesMate;
        entry.MovesNoMate = c.nMovesNoMate;
        TTemporaryChessboardRegister<0> main(1000, 16);
        TTemporaryChessboardRegister<1> doubtfulness(1000, 16);
        main.Merge(entry);
        doubtfulness.Merge(entry);
        EXPECT_EQ(main.RemoveNMovers(c.n), c.bFromMain ? 1u : 0u);
        EXPECT_EQ(main.Find(NumberedKey(1)).has_value(), !c.bFromMain);
        EXPECT_EQ(main.ElementCount(), c.bFromMain ? 0u : 1u);
        EXPECT_EQ(doubtfulness.RemoveNMovers(c.n), c.bFromDoubtfulness ? 1u : 0u);
        EXPECT_EQ(doubtfulness.ElementCount(), c.bFromDoubtfulness ? 0u : 1u);
    }
}

TEST(RegisterRemoveNMovers, AggregatedRunsOverEveryRegisterAndLogs) {
    CLogRecorder log;
    TAggregatedTemporaryChessboardRegister reg(1000, 16);
    reg.SetServices({.log = log.Sink()});
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
    reg.SetServices({.log = log.Sink()});
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

constexpr uint32_t kMaxCapacity = std::numeric_limits<uint32_t>::max();

TEST(RegisterEmptyingThresholds, FollowCapacityAboveTheFloor) {
    // clang-format off
    const struct { uint32_t nCapacity; bool bFromInsertion; uint32_t nThreshold; } cases[] = {
        {0, false, 4'096}, {100'000, false, 4'096}, {1'000'000, false, 40'000},
        {1'000'003, false, 40'000},  // 320000.96 -> 320000
        {kMaxCapacity, false, 171'798'691}, {0, true, 524'288}, {3'000'000, true, 524'288},
        {12'000'000, true, 1'000'000}, {12'000'002, true, 1'000'000},  // 8000001.33 -> 8000001
        {kMaxCapacity, true, 357'913'941},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(EmptyingThreshold(c.nCapacity, c.bFromInsertion), c.nThreshold)
            << c.nCapacity << c.bFromInsertion;
}

class RegisterEmptying : public ::testing::Test {
  protected:
    RegisterEmptying() : reg(100, 64) {
        ResetLastLevelEmptied();
        reg.SetServices({.log = log.Sink()});
    }
    void InsertAll(uint32_t nFirst, uint32_t nCount, uint16_t n, bool bMate) {
        for (uint32_t i = nFirst; i < nFirst + nCount; ++i) ASSERT_TRUE(reg.Insert(n, NumberedKey(i), bMate));
    }
    static void WaitPastTheMinimumInterval() { std::this_thread::sleep_for(std::chrono::milliseconds(70)); }
    std::vector<uint16_t> LevelsRemoved() const {
        std::vector<uint16_t> levels;
        const std::string prefix = "TTemporaryChessboardRegister::RemoveNMovers start. n=";
        for (const std::string& line : log.Lines()) {
            if (line.starts_with(prefix))
                levels.push_back(static_cast<uint16_t>(std::stoi(line.substr(prefix.size()))));
        }
        levels.erase(std::unique(levels.begin(), levels.end()), levels.end());  // one line per register
        return levels;
    }

    CLogRecorder log;
    TAggregatedTemporaryChessboardRegister reg;
};

// A register of capacity 100 holding 110 elements: 10 mates in 3, 30 mates in 5, 30 no-mates in
// 7, 30 mates in 9, and two doubtfulness registers of 5 entries at level 21, one of them pinned.
TEST_F(RegisterEmptying, RemovesUnpinnedThenShortThenLevelsUntilAFifthIsFree) {
    reg.SetCapacity(1000);
    InsertAll(0, 10, 3, true);
    InsertAll(100, 30, 5, true);
    InsertAll(200, 30, 7, false);
    InsertAll(300, 30, 9, true);
    for (uint32_t i = 0; i < 5; ++i) {
        reg.InsertDoubtful(ConfigurationKey(1, 0), 21, NumberedKey(i), true);
        reg.InsertDoubtful(ConfigurationKey(2, 0), 21, NumberedKey(i), true);
    }
    reg.PinDoubtful(2, 0);
    reg.SetCapacity(100);
    ASSERT_EQ(reg.ElementCount(), 110u);

    // Unpinned doubtfulness (5), n below 4 (10): 15 is under a third of the capacity, so short
    // positions are no longer stored. Then levels 5 and 4 free 30 more: 65 left, 35 free.
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_EQ(reg.ElementCount(), 65u);
    EXPECT_EQ(LevelsRemoved(), (std::vector<uint16_t>{3, 5, 4}));
    EXPECT_EQ(LastLevelEmptied(), 5);
    EXPECT_EQ(reg.DoubtfulConfigurations(), (std::vector<uint64_t>{ConfigurationKey(2, 0)}));
    EXPECT_FALSE(reg.ShortPositions());
    EXPECT_FALSE(reg.Insert(3, NumberedKey(1000), true));
    EXPECT_FALSE(reg.InsertDoubtful(ConfigurationKey(2, 0), 3, NumberedKey(1000), true));
    EXPECT_FALSE(reg.InsertDoubtful(ConfigurationKey(7, 0), 3, NumberedKey(1000), true));
    reg.Insert(3, NumberedKey(1000), true, 0.0, 0);
    EXPECT_EQ(reg.SubproblemCount(), 0u);
    EXPECT_EQ(reg.ElementCount(), 65u);
    const std::vector<std::string> lines = log.Lines();
    EXPECT_EQ(lines.front(), "EmptySomeDataWhenRegisterFull started");
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull complete"), 1);
    EXPECT_EQ(log.Count("!!!! EmptySomeDataWhenRegisterFull failed."), 0);

    // Within 64 ms of the last emptying nothing more is done.
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_EQ(reg.ElementCount(), 65u);
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull started"), 2);
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull complete"), 1);

    // Later, levels 5 and 4 free nothing, 7 and 6 nothing (no-mates in 7 stay two levels
    // longer), 9 and 8 take the mates in 9 and the no-mates in 7; the pinned register stays.
    WaitPastTheMinimumInterval();
    log.Clear();
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_EQ(LevelsRemoved(), (std::vector<uint16_t>{5, 4, 7, 6, 9, 8}));
    EXPECT_EQ(reg.ElementCount(), 5u);
    EXPECT_EQ(LastLevelEmptied(), 9);
    EXPECT_EQ(reg.DoubtfulElementCount(), 5u);
}

TEST_F(RegisterEmptying, StartsTwoLevelsBelowWhereTheLastOneStopped) {
    reg.SetCapacity(1000);
    InsertAll(0, 30, 13, true);
    InsertAll(100, 80, 21, true);
    reg.SetCapacity(100);
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_EQ(LastLevelEmptied(), 13);
    EXPECT_EQ(reg.ElementCount(), 80u);

    WaitPastTheMinimumInterval();
    InsertAll(200, 10, 5, true);
    log.Clear();
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    // Level 11 comes first and takes the mates in 5 with it: a fifth is free, which is enough.
    EXPECT_EQ(LevelsRemoved(), (std::vector<uint16_t>{11, 10}));
    EXPECT_EQ(LastLevelEmptied(), 11);
    EXPECT_EQ(reg.ElementCount(), 80u);
    EXPECT_FALSE(reg.Find(NumberedKey(200)));
    EXPECT_EQ(reg.Find(NumberedKey(100))->MovesMate, 21);
}

TEST_F(RegisterEmptying, FromInsertionWithAQuarterFreeDoesNothing) {
    InsertAll(0, 75, 5, true);
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(true));
    EXPECT_EQ(reg.ElementCount(), 75u);
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull complete"), 0);
    InsertAll(100, 1, 5, true);  // 24 free: less than a quarter
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(true));
    EXPECT_EQ(reg.ElementCount(), 0u);
}

TEST_F(RegisterEmptying, LogsFailureWhenNoLevelHelps) {
    InsertAll(0, 100, 301, true);
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_EQ(reg.ElementCount(), 100u);
    EXPECT_EQ(LastLevelEmptied(), 255);
    const std::vector<std::string> lines = log.Lines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2], "!!!! EmptySomeDataWhenRegisterFull failed.");
    EXPECT_EQ(lines.back(), "EmptySomeDataWhenRegisterFull complete");
}

TEST_F(RegisterEmptying, AutosaveFirstAndRegisterFileCanStopTheLevels) {
    std::vector<std::string> calls;
    reg.SetAutosave([&] { calls.push_back("autosave at " + std::to_string(reg.ElementCount())); });
    reg.SetRegisterFileStop([&] {
        calls.push_back("stop?");
        return true;
    });
    InsertAll(0, 100, 5, true);
    EXPECT_TRUE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_EQ(calls, (std::vector<std::string>{"autosave at 100", "stop?"}));
    EXPECT_EQ(reg.ElementCount(), 100u);
    EXPECT_EQ(log.Count("!!!! EmptySomeDataWhenRegisterFull failed."), 0);
}

TEST_F(RegisterEmptying, InsertionIntoAFullRegisterEmptiesIt) {
    InsertAll(0, 100, 5, true);
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull started"), 0);
    EXPECT_TRUE(reg.Insert(7, NumberedKey(500), true));
    EXPECT_EQ(reg.ElementCount(), 1u);
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull complete"), 1);
}

// One thread empties (held inside the autosave); a second thread that finds the register full
// does not wait: its emptying returns false and its insertion goes through.
TEST_F(RegisterEmptying, SecondThreadAtAFullRegisterGoesOn) {
    InsertAll(0, 100, 5, true);
    std::promise<void> emptyingStarted;
    std::promise<void> secondDone;
    std::shared_future<void> secondDoneFuture = secondDone.get_future().share();
    reg.SetAutosave([&] {
        emptyingStarted.set_value();
        secondDoneFuture.wait();
    });
    std::thread first([&] { EXPECT_TRUE(reg.Insert(7, NumberedKey(500), true)); });
    emptyingStarted.get_future().wait();
    EXPECT_FALSE(reg.EmptySomeDataWhenRegisterFull(false));
    EXPECT_TRUE(reg.Insert(7, NumberedKey(501), true));
    EXPECT_EQ(reg.ElementCount(), 101u);
    secondDone.set_value();
    first.join();
    EXPECT_EQ(log.Count("EmptySomeDataWhenRegisterFull complete"), 1);
    EXPECT_TRUE(reg.Find(NumberedKey(500)));
    EXPECT_TRUE(reg.Find(NumberedKey(501)));
}

}  // namespace
}  // namespace moremate
