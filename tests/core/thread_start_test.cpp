#include "core/thread_start.h"

#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace moremate
