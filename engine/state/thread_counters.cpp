#include "thread_counters.h"

#include <cstdio>

namespace moremate {

std::atomic<int> g_nMainThreadsRunning{0};
std::atomic<int> g_nMainThreadsRunningExclMTLThreads{0};
std::atomic<int> g_nAdditionalThreadsSpawned{0};

CMainThreadCount::CMainThreadCount(bool levelThread) : m_bLevelThread(levelThread) {
    ++g_nMainThreadsRunning;
    if (!m_bLevelThread) ++g_nMainThreadsRunningExclMTLThreads;
}

CMainThreadCount::~CMainThreadCount() {
    if (!m_bLevelThread) --g_nMainThreadsRunningExclMTLThreads;
    --g_nMainThreadsRunning;
}

std::string ThreadsText(const std::string& modePrefix, size_t threads, size_t levels) {
    char text[48];
    if (levels < 2)
        std::snprintf(text, sizeof text, "%2zdthrd(s)", threads);
    else
        std::snprintf(text, sizeof text, "%2zd^%zdthrd(s)", threads, levels);
    return modePrefix + text;
}

}  // namespace moremate
