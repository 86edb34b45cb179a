// The solving run of one problem as the rest of the program sees it: the process-wide run state
// (flags and counts that the interface polls and the diagnostic report prints), the decisions
// taken when a run starts, and the texts with which a run ends.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>

namespace moremate {

extern std::atomic<bool> g_bRunning;
extern std::atomic<bool> g_bEngineThreadProcRunning;
extern std::atomic<bool> g_bIsCurrentProblemRunningOrFinalizing;
extern std::atomic<bool> g_bStopPending;
extern std::atomic<bool> g_bBruteForce;
extern std::atomic<bool> g_bCleaningTempReg;
extern std::atomic<bool> g_bRegressionTestsPending;
extern std::atomic<bool> g_bRegressionsTestsProcPending;
extern std::atomic<int> g_nEngineThreadProcAuxMatePending;     // "EngineThreadProc_AuxMate_pending"
extern std::atomic<int> g_nEngineThreadProcBlackMovesPending;  // "EngineThreadProc_BlackMoves_pending"

// Identifiers of the problems running and of those being stopped. The counts are also kept apart
// from the sets, for readers that must not lock (a report written from a signal handler).
class CRunningProblems {
  public:
    void Started(uint32_t id);
    void Stopping(uint32_t id);
    void Ended(uint32_t id);
    void StoppingAll();  // every running problem is being stopped
    size_t RunningCount() const;
    size_t StoppingCount() const;
    size_t RunningCountWithoutLock() const { return m_nRunning.load(); }
    size_t StoppingCountWithoutLock() const { return m_nStopping.load(); }

  private:
    void UpdateCounts();  // with the mutex held

    mutable std::mutex m_mutex;
    std::set<uint32_t> m_setRunning, m_setStopping;
    std::atomic<size_t> m_nRunning{0}, m_nStopping{0};
};
CRunningProblems& RunningProblems();

// One line per flag and count, "name=value" in decimal.
std::string RunStateReport();

// Marks a run of `problem` in the process-wide state for as long as it lives.
class CSolvingRunScope {
  public:
    CSolvingRunScope(uint32_t problem, bool bruteForce);
    ~CSolvingRunScope();
    CSolvingRunScope(const CSolvingRunScope&) = delete;
    CSolvingRunScope& operator=(const CSolvingRunScope&) = delete;

  private:
    uint32_t m_nProblem;
};

// Safe mode: quick mode off in the options, forced by the problem, or a brute force run.
bool SafeModeForRun(bool quickMode, bool problemForcesSafeMode, bool bruteForce);
// The smaller of the setting and a value from the depth to prove (moves): 0 below 16, else
// (n - 15) / 2; for the second kind of task the thresholds are 18 and (n - 17) / 2.
int SchedulerLevelsForRun(int schedulerLevelsSetting, int depth, bool secondKind);

// End-of-run texts.
std::string EngineEndLine(bool completed, const std::string& summary);  // "Engine has completed: ..."
std::string RunOutcomeText(uint32_t problem, size_t solutions, const std::string& error);
std::string TimeLimitHitText(int seconds);  // "Solving time limit hit: N seconds\n"

}  // namespace moremate
