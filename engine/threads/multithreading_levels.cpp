#include "multithreading_levels.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>

#include "engine/state/thread_counters.h"
#include "settings/machine.h"

namespace moremate {
namespace {

constexpr const char* kNoImplementation =
    "Error: no implementation in FindMateMultithreadingLevelThreadProcFFM for ";
constexpr int kDefaultQuickerMateMoves = 7;
constexpr uint8_t kRequestFinalState = 3;
constexpr uint16_t kRequestFinalCounter = 65535;

[[noreturn]] void NoImplementation(const char* what) {
    throw std::runtime_error(std::string(kNoImplementation) + what);
}

template <int16_t kDepthPlies, bool kAllowExceptions, bool kVerifyHeuristics>
uint8_t SearchVariant(TLevelTask& task, TMateSearch& search) {
    search.SetQuickerMateDepth(kDepthPlies == kDefaultQuickMateDepthPlies ? kDefaultQuickerMateMoves
                                                                          : (kDepthPlies + 1) / 2);
    search.Observed().From(kVerifyHeuristics ? task.ply : 0);  // FindForcedMate starts at ply 0
    try {
        return kVerifyHeuristics ? search.SearchAfterMove(task.board, task.ply)
                                 : search.FindForcedMate(task.board);
    } catch (const TSearchStopped&) {
        if (kAllowExceptions) throw;
        return kDoubtful;
    }
}

template <int16_t kDepthPlies, bool kAllowExceptions>
uint8_t ByVerification(TLevelTask& task, TMateSearch& search, uint8_t verifyHeuristics) {
    switch (verifyHeuristics) {
        case 0:
            return SearchVariant<kDepthPlies, kAllowExceptions, false>(task, search);
        case 1:
            return SearchVariant<kDepthPlies, kAllowExceptions, true>(task, search);
        default:
            NoImplementation("VerifyHeuristics");
    }
}

template <int16_t kDepthPlies>
uint8_t ByExceptions(TLevelTask& task, TMateSearch& search, const TLevelContext& context) {
    switch (context.bAllowExceptions) {
        case 0:
            return ByVerification<kDepthPlies, false>(task, search, context.VerifyHeuristics);
        case 1:
            return ByVerification<kDepthPlies, true>(task, search, context.VerifyHeuristics);
        default:
            NoImplementation("bAllowExceptions");
    }
}

// Clears a request the search left for the run, unless it has reached its final state.
void ResetPendingRequest(TLevelRun& run) {
    if (!run.m_bRequestPending.load()) return;
    while (run.m_bySpin.exchange(1) != 0) std::this_thread::yield();
    const bool final = run.m_byRequestState.load() == kRequestFinalState &&
                       run.m_nRequestCounter.load() == kRequestFinalCounter;
    if (!final) {
        run.m_byRequestState = 0;
        run.m_nRequestCounter = 0;
        run.m_bRequestPending = false;
    }
    run.m_bySpin.store(0);
}

}  // namespace

TThreadSettings DefaultThreadSettings(int optionLevels) {
    return {LogicalProcessorCount(), optionLevels != 0 ? size_t{1} : size_t{0}};
}

size_t MainThreadsFor(const TThreadSettings& settings, size_t firstMoves) {
    const size_t t = std::max<size_t>(settings.threads, 1);
    size_t all = 1, perMove = 1;
    for (size_t level = 0; level < settings.levels && all < kMaxMainThreads; ++level) {
        perMove = all;
        all *= t;
    }
    return std::clamp<size_t>(std::min(all, firstMoves * perMove), 1, kMaxMainThreads);
}

int16_t QuickMateDepthPlies(uint8_t moves) {
    return moves == 0 ? kDefaultQuickMateDepthPlies : static_cast<int16_t>(2 * moves - 1);
}

uint8_t FindMateMultithreadingLevelThreadProcFFM(TLevelTask& task, TMateSearch& search,
                                                 const TLevelContext& context) {
    if (task.m_byVariant > kMaxTaskVariant) NoImplementation("bAllowExceptions");
    switch (context.m_shLookForQuickerMateDepth) {
        case 9:
            return ByExceptions<9>(task, search, context);
        case 11:
            return ByExceptions<11>(task, search, context);
        case kDefaultQuickMateDepthPlies:
            return ByExceptions<kDefaultQuickMateDepthPlies>(task, search, context);
        default:
            NoImplementation("m_shLookForQuickerMateDepth");
    }
}

uint8_t RunLevelThread(TLevelTask& task, TMateSearch& search, const TLevelContext& context, TLevelRun& run) {
    const CMainThreadCount count(true);
    uint8_t state;
    while ((state = task.m_byState.load()) == kTaskNotHandedOver) std::this_thread::yield();
    if (state == kTaskWithdrawn) return kUnknownResult;
    task.m_byState.exchange(kTaskRunning);
    run.m_bMultithreadedPhase = true;
    const TChessboard* root = &task.board;
    while (root->previous) root = root->previous;
    run.m_pRoot = root;
    uint8_t result = kDoubtful;
    try {
        result = FindMateMultithreadingLevelThreadProcFFM(task, search, context);
    } catch (...) {
        task.m_byResult.exchange(kDoubtful);
        task.m_byState.exchange(kTaskDone);
        ResetPendingRequest(run);
        throw;
    }
    task.m_byResult.exchange(result);
    task.m_byState.exchange(kTaskDone);
    ResetPendingRequest(run);
    return result;
}

}  // namespace moremate
