// Several threads inserting, looking up and emptying at once (the ThreadSanitizer build checks
// these for races), and the register lock's recursion.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "register_test_support.h"
#include "registers/aggregated_register.h"
#include "registers/register_emptying.h"
#include "registers/register_lock.h"
#include "registers/shared_count.h"

namespace moremate {
namespace {

using testing::NumberedKey;

constexpr uint32_t kThreads = 4;
constexpr uint32_t kOwnKeys = 1'000;
constexpr uint32_t kSharedKeys = 300;

// Few buckets, so that the threads meet in the same buckets while these grow into sorted arrays.
TEST(RegisterConcurrency, InsertAndLookupFromSeveralThreads) {
    TAggregatedTemporaryChessboardRegister reg(1'000'000, 8);
    constexpr uint64_t kConfiguration = ConfigurationKey(4, 1);
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&reg, t] {
            for (uint32_t i = 0; i < kOwnKeys; ++i) {
                const uint32_t own = 10'000 * (t + 1) + i;
                reg.Insert(static_cast<uint16_t>(5 + 2 * t), NumberedKey(own), true);
                // Every thread records the shared keys, with a mate one level apart per thread.
                const uint32_t shared = i % kSharedKeys;
                reg.Prefetch(RegisterHash(NumberedKey(shared)));
                reg.Insert(static_cast<uint16_t>(21 - 2 * t), NumberedKey(shared), true);
                reg.InsertDoubtful(kConfiguration, 9, NumberedKey(shared), t % 2 == 0);
                EXPECT_EQ(reg.Answer(31, NumberedKey(own)), TRegisterAnswer::Mate);
                reg.Find(NumberedKey(10'000 * ((t + 1) % kThreads + 1) + i));
                reg.FindDoubtful(kConfiguration, NumberedKey(shared));
                if (i % 100 == 0) reg.Insert(9, NumberedKey(t), t % 2 == 0, 0.0, t);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(reg.EntryCount(), kThreads * kOwnKeys + kSharedKeys);
    EXPECT_EQ(reg.Census().nEntries, reg.EntryCount());
    EXPECT_EQ(reg.DoubtfulElementCount(), kSharedKeys);
    EXPECT_EQ(reg.SubproblemCount(), kThreads);
    for (uint32_t t = 0; t < kThreads; ++t) {
        for (uint32_t i = 0; i < kOwnKeys; i += 97)
            EXPECT_EQ(reg.Find(NumberedKey(10'000 * (t + 1) + i))->MovesMate, 5 + 2 * t);
    }
    for (uint32_t shared = 0; shared < kSharedKeys; ++shared) {
        EXPECT_EQ(reg.Find(NumberedKey(shared))->MovesMate, 21 - 2 * (kThreads - 1));
        const auto doubtful = reg.FindDoubtful(kConfiguration, NumberedKey(shared));
        ASSERT_TRUE(doubtful);
        EXPECT_EQ(doubtful->MovesMate, 9);
        EXPECT_EQ(doubtful->MovesNoMate, 7);  // "not doubtful" at 9 repaired below "doubtful" at 9
    }
}

// A small register that keeps filling up while several threads insert: emptying, removal of
// doubtfulness registers and insertions overlap, and the counts stay exact.
TEST(RegisterConcurrency, EmptyingWhileInserting) {
    ResetLastLevelEmptied();
    testing::CLogRecorder log;
    TAggregatedTemporaryChessboardRegister reg(2'000, 64);
    reg.SetServices({.log = log.Sink()});
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&reg, t] {
            for (uint32_t i = 0; i < 2'500; ++i) {
                const uint16_t n = static_cast<uint16_t>(5 + 2 * (i % 6));
                reg.Insert(n, NumberedKey(100'000 * t + i), i % 3 != 0);
                reg.InsertDoubtful(ConfigurationKey(1 + i % 3, t), n, NumberedKey(i), true);
                if (i % 500 == 0) reg.RemoveDoubtful(1 + i % 3, t);
                reg.Answer(n, NumberedKey(100'000 * t + i / 2));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    uint64_t nVisited = 0;
    reg.ForEachConfigurationEntry([&nVisited](uint64_t, const TChessboardRegisterEntry&) { ++nVisited; });
    EXPECT_EQ(reg.ElementCount(), nVisited);
    EXPECT_EQ(reg.Census().nEntries, reg.EntryCount());
    EXPECT_EQ(reg.DoubtfulCensus().nEntries, reg.DoubtfulElementCount());
    EXPECT_GE(log.Count("EmptySomeDataWhenRegisterFull complete"), 1);
}

TEST(RegisterLock, ExclusiveHolderMayTakeItAgainAndShared) {
    CRegisterLock lock;
    std::atomic<bool> bReaderIn{false};
    lock.lock();
    lock.lock();
    lock.lock_shared();  // inside the own exclusive hold: no wait
    lock.unlock_shared();
    std::thread reader([&] {
        std::shared_lock shared(lock);
        bReaderIn = true;
    });
    lock.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(bReaderIn);  // still held once
    lock.unlock();
    reader.join();
    EXPECT_TRUE(bReaderIn);
}

TEST(RegisterLock, WriterWaitsForReaders) {
    CRegisterLock lock;
    std::atomic<bool> bWriterIn{false};
    std::promise<void> writerWaiting;
    lock.lock_shared();
    std::thread writer([&] {
        writerWaiting.set_value();
        std::unique_lock exclusive(lock);
        bWriterIn = true;
    });
    writerWaiting.get_future().wait();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(bWriterIn);
    lock.unlock_shared();
    writer.join();
    EXPECT_TRUE(bWriterIn);
    std::shared_lock shared(lock);  // free again
}

// The count insertions check against the capacity: exact in total once the threads are done, its
// quick lower bound never further from it than kMaxUnseen, and never wrapped below zero when a
// removal takes from the total what a thread's share still holds.
TEST(RegisterSharedCount, ExactInTotalAndBoundedWithoutTheShares) {
    CSharedCount count;
    count.Add(5);
    EXPECT_EQ(count.Load(), 5u);
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&count] {
            for (uint32_t i = 0; i < 1'000; ++i) count.Add(1 + i % 3);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count.Load(), 5 + kThreads * 1'999);
    EXPECT_LE(count.LoadAtLeast(), count.Load());
    EXPECT_LT(count.Load() - count.LoadAtLeast(), CSharedCount::kMaxUnseen);

    CSharedCount removed;
    removed.Add(10);
    removed.Subtract(10);
    EXPECT_EQ(removed.Load(), 0u);
    EXPECT_EQ(removed.LoadAtLeast(), 0u);
    removed.Subtract(1);  // a count that drifted
    EXPECT_EQ(removed.Load(), 0u);
    EXPECT_EQ(removed.Exchange(7), 0u);
    EXPECT_EQ(removed.Load(), 7u);
    EXPECT_EQ(removed.LoadAtLeast(), 7u);
}

}  // namespace
}  // namespace moremate
