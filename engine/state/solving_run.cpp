#include "solving_run.h"

#include <fmt/core.h>

#include <algorithm>

#include "thread_counters.h"

namespace moremate {

std::atomic<bool> g_bRunning{false};
std::atomic<bool> g_bEngineThreadProcRunning{false};
std::atomic<bool> g_bIsCurrentProblemRunningOrFinalizing{false};
std::atomic<bool> g_bStopPending{false};
std::atomic<bool> g_bBruteForce{false};
std::atomic<bool> g_bCleaningTempReg{false};
std::atomic<bool> g_bRegressionTestsPending{false};
std::atomic<bool> g_bRegressionsTestsProcPending{false};
std::atomic<int> g_nEngineThreadProcAuxMatePending{0};
std::atomic<int> g_nEngineThreadProcBlackMovesPending{0};

void CRunningProblems::Started(uint32_t id) {
    std::lock_guard lock(m_mutex);
    m_setRunning.insert(id);
    UpdateCounts();
}

void CRunningProblems::Stopping(uint32_t id) {
    std::lock_guard lock(m_mutex);
    m_setStopping.insert(id);
    UpdateCounts();
}

void CRunningProblems::StoppingAll() {
    std::lock_guard lock(m_mutex);
    m_setStopping.insert(m_setRunning.begin(), m_setRunning.end());
    UpdateCounts();
}

void CRunningProblems::Ended(uint32_t id) {
    std::lock_guard lock(m_mutex);
    m_setRunning.erase(id);
    m_setStopping.erase(id);
    UpdateCounts();
}

void CRunningProblems::UpdateCounts() {
    m_nRunning = m_setRunning.size();
    m_nStopping = m_setStopping.size();
}

size_t CRunningProblems::RunningCount() const {
    std::lock_guard lock(m_mutex);
    return m_setRunning.size();
}

size_t CRunningProblems::StoppingCount() const {
    std::lock_guard lock(m_mutex);
    return m_setStopping.size();
}

CRunningProblems& RunningProblems() {
    static CRunningProblems problems;
    return problems;
}

std::string RunStateReport() {
    const std::pair<const char*, long long> values[] = {
        {"g_bRunning", g_bRunning.load()},
        {"g_bEngineThreadProcRunning", g_bEngineThreadProcRunning.load()},
        {"g_bIsCurrentProblemRunningOrFinalizing", g_bIsCurrentProblemRunningOrFinalizing.load()},
        {"g_bStopPending", g_bStopPending.load()},
        {"g_bBruteForce", g_bBruteForce.load()},
        {"g_bCleaningTempReg", g_bCleaningTempReg.load()},
        {"g_bRegressionTestsPending", g_bRegressionTestsPending.load()},
        {"g_bRegressionsTestsProcPending", g_bRegressionsTestsProcPending.load()},
        {"EngineThreadProc_AuxMate_pending", g_nEngineThreadProcAuxMatePending.load()},
        {"EngineThreadProc_BlackMoves_pending", g_nEngineThreadProcBlackMovesPending.load()},
        {"setRunningProblemsIds", static_cast<long long>(RunningProblems().RunningCount())},
        {"setProblemsBeingStoppedIds", static_cast<long long>(RunningProblems().StoppingCount())},
        {"g_nMainThreadsRunning", g_nMainThreadsRunning.load()},
        {"g_nMainThreadsRunningExclMTLThreads", g_nMainThreadsRunningExclMTLThreads.load()},
        {"g_nAdditionalThreadsSpawned", g_nAdditionalThreadsSpawned.load()},
    };
    std::string report;
    for (const auto& [name, value] : values) report += fmt::format("{}={}\n", name, value);
    return report;
}

CSolvingRunScope::CSolvingRunScope(uint32_t problem, bool bruteForce) : m_nProblem(problem) {
    RunningProblems().Started(problem);
    g_bBruteForce = bruteForce;
    g_bRunning = true;
    g_bEngineThreadProcRunning = true;
}

CSolvingRunScope::~CSolvingRunScope() {
    RunningProblems().Ended(m_nProblem);
    const bool anyLeft = RunningProblems().RunningCount() > 0;
    g_bEngineThreadProcRunning = anyLeft;
    g_bRunning = anyLeft;
    if (anyLeft) return;
    g_bBruteForce = false;
    g_bStopPending = false;
}

bool SafeModeForRun(bool quickMode, bool problemForcesSafeMode, bool bruteForce) {
    return !quickMode || problemForcesSafeMode || bruteForce;
}

int SchedulerLevelsForRun(int schedulerLevelsSetting, int depth, bool secondKind) {
    const int threshold = secondKind ? 18 : 16;
    const int fromDepth = depth < threshold ? 0 : (depth - (threshold - 1)) / 2;
    return std::min(schedulerLevelsSetting, fromDepth);
}

std::string EngineEndLine(bool completed, const std::string& summary) {
    return (completed ? "Engine has completed: " : "Engine stopped: ") + summary;
}

std::string RunOutcomeText(uint32_t problem, size_t solutions, const std::string& error) {
    if (!error.empty())
        return fmt::format("Thread solving problem {} completed with error:\n\n{}", problem, error);
    const std::string success =
        fmt::format("Thread solving problem {} has completed successfully.\n", problem);
    if (solutions == 0) return success + fmt::format("No solution found of the problem {}", problem);
    return success + fmt::format("{} solution(s) found of the problem {}", solutions, problem);
}

std::string TimeLimitHitText(int seconds) {
    return fmt::format("Solving time limit hit: {} seconds\n", seconds);
}

}  // namespace moremate
