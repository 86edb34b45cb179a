#include "core/thread_start.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

namespace moremate {
namespace {

// What the hooks saw, each filled on the thread that ran it.
thread_local std::string t_sEvents;
std::string g_sEventsAtEnd;
std::thread::id g_startThread, g_endThread;
int g_nSetup = 7;

void* OnStart() {
    g_startThread = std::this_thread::get_id();
    t_sEvents += "start ";
    return &g_nSetup;
}

void OnEnd(void* setup) {
    g_endThread = std::this_thread::get_id();
    t_sEvents += setup == &g_nSetup ? "end" : "end with another setup";
    g_sEventsAtEnd = t_sEvents;
}

const TThreadHooks kHooks{OnStart, OnEnd};

TEST(StartThread, RunsTheHooksAroundTheFunctionOnTheNewThread) {
    SetThreadHooks(&kHooks);
    std::thread::id worker;
    int sum = 0;
    StartThread(
        [&](int a, int& b) {
            worker = std::this_thread::get_id();
            t_sEvents += "run ";
            b = a + 1;
        },
        41, std::ref(sum))
        .join();
    SetThreadHooks(nullptr);
    EXPECT_EQ(sum, 42);
    EXPECT_EQ(g_sEventsAtEnd, "start run end");
    EXPECT_EQ(g_startThread, worker);
    EXPECT_EQ(g_endThread, worker);
    EXPECT_TRUE(t_sEvents.empty());  // nothing ran on the calling thread

    g_sEventsAtEnd.clear();
    StartThread([] { t_sEvents += "run"; }).join();
    EXPECT_EQ(g_sEventsAtEnd, "");  // hooks taken away: none run
}

TEST(RunOnThreads, RunsEveryIndexOnceAndRethrowsAFailure) {
    std::vector<std::atomic<int>> runs(5);
    RunOnThreads(runs.size(), [&](size_t i) { ++runs[i]; });
    for (const std::atomic<int>& n : runs) EXPECT_EQ(n, 1);
    EXPECT_THROW(RunOnThreads(3,
                              [](size_t i) {
                                  if (i == 2) throw std::runtime_error("index 2");
                              }),
                 std::runtime_error);
}

}  // namespace
}  // namespace moremate
