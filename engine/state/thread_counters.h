// Process-wide counts of the search threads, polled by the progress display and printed in the
// diagnostic report, and the thread figure of the progress line.
#pragma once

#include <atomic>
#include <cstddef>
#include <string>

namespace moremate {

extern std::atomic<int> g_nMainThreadsRunning;                // every main search thread
extern std::atomic<int> g_nMainThreadsRunningExclMTLThreads;  // less the multithreading levels' threads
extern std::atomic<int> g_nAdditionalThreadsSpawned;          // threads beyond the configured ones

// Counts the calling thread as a main search thread while it lives; a thread of the
// multithreading levels stays out of g_nMainThreadsRunningExclMTLThreads.
class CMainThreadCount {
  public:
    explicit CMainThreadCount(bool levelThread);
    ~CMainThreadCount();
    CMainThreadCount(const CMainThreadCount&) = delete;
    CMainThreadCount& operator=(const CMainThreadCount&) = delete;

  private:
    bool m_bLevelThread;
};

// "SnglSolution, 4thrd(s)" with one level, "AllSolutions, 4^2thrd(s)" with more; `modePrefix`
// is "SnglSolution,", "AllSolutions," or empty.
std::string ThreadsText(const std::string& modePrefix, size_t threads, size_t levels);

}  // namespace moremate
