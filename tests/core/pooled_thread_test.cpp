#include "core/pooled_thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace moremate {
namespace {

std::thread::id RunOnPooledThread() {
    std::thread::id ranOn;
    CPooledThread([&ranOn] { ranOn = std::this_thread::get_id(); }).join();
    return ranOn;
}

// One task after another: the worker of the first waits for the next, on a thread of its own.
TEST(PooledThread, TasksOneAfterAnotherRunOnTheSameParkedWorker) {
    const std::thread::id first = RunOnPooledThread();
    EXPECT_NE(first, std::this_thread::get_id());
    for (int i = 0; i < 50; ++i) ASSERT_EQ(RunOnPooledThread(), first) << i;
}

// Tasks that can only end together: each must have a worker of its own.
TEST(PooledThread, TasksAtTheSameTimeGetWorkersOfTheirOwn) {
    constexpr int kTasks = 4;
    for (int round = 0; round < 3; ++round) {
        std::latch together(kTasks);
        std::vector<CPooledThread> tasks;
        std::mutex mutex;
        std::set<std::thread::id> threads;
        for (int i = 0; i < kTasks; ++i)
            tasks.emplace_back([&] {
                together.arrive_and_wait();
                std::lock_guard lock(mutex);
                threads.insert(std::this_thread::get_id());
            });
        for (CPooledThread& task : tasks) task.join();
        EXPECT_EQ(threads.size(), static_cast<size_t>(kTasks));
    }
}

// What the task's function holds is given up by the time join returns; a handle destroyed
// without join waits all the same.
TEST(PooledThread, JoinWaitsForTheTaskAndItsFunction) {
    auto held = std::make_shared<int>(1);
    std::atomic<bool> done{false};
    {
        CPooledThread task([held, &done] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            done = true;
        });
        EXPECT_TRUE(task.joinable());
    }
    EXPECT_TRUE(done);
    EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace moremate
