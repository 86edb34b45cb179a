// Multithreading levels: the first White moves of the main position are shared by T threads on
// each of L levels, T^L main threads at most. This file holds the thread settings, the task a
// level thread is handed and the thread procedure that runs it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "core/chessboard.h"
#include "engine/search/mate_search.h"

namespace moremate {

// Threads per level and levels of a run. Levels 0 is one thread; with L levels, T^L at most.
struct TThreadSettings {
    size_t threads = 1;
    size_t levels = 1;
};

inline constexpr size_t kMaxMainThreads = 4096;  // 64 threads on 2 levels

// Threads: the machine's logical processors; levels: 1 (the options' switch may turn them off).
TThreadSettings DefaultThreadSettings(int optionLevels);
// T^L main threads, but no more than the first moves can keep busy (each move's share on the
// levels below is T^(L-1) threads), at least 1, at most kMaxMainThreads.
size_t MainThreadsFor(const TThreadSettings& settings, size_t firstMoves);

inline constexpr int16_t kDefaultQuickMateDepthPlies = 32767;
// The quick-mate depth of a heuristic set in plies: #5 is 9, #6 is 11, the default (0) 32767.
int16_t QuickMateDepthPlies(uint8_t moves);

// What a level thread's search depends on: selected by FindMateMultithreadingLevelThreadProcFFM.
struct TLevelContext {
    int16_t m_shLookForQuickerMateDepth = kDefaultQuickMateDepthPlies;  // 9, 11 or 32767
    // 0 or 1 each. With exceptions allowed a stop unwinds the thread's search; without, the task
    // ends with a doubtful result. Verifying heuristics asks them about the task's own move.
    uint8_t bAllowExceptions = 1;
    uint8_t VerifyHeuristics = 1;
    // Copied into every task (see TLevelTask).
    uint8_t m_byVariant = 0;
    uint8_t m_byPhase = 255;
    bool m_bForcedMatePass = false;
};

// Task states: handed over once the board is ready; withdrawn when its result no longer counts.
inline constexpr uint8_t kTaskDone = 0;
inline constexpr uint8_t kTaskRunning = 1;
inline constexpr uint8_t kTaskHandedOver = 2;
inline constexpr uint8_t kTaskWithdrawn = 254;
inline constexpr uint8_t kTaskNotHandedOver = 255;

inline constexpr uint8_t kMaxTaskVariant = 9;

// The task of one level thread: a move's position, linked to its parent positions up to the root.
struct TLevelTask {
    TChessboard board;
    int ply = 0;                     // half-moves from the root to `board`
    uint8_t m_byVariant = 0;         // 0..9: the scheduler levels below the task
    uint8_t m_byPhase = 255;         // hybrid brute force: 255 none, 0 first phase, other second phase
    bool m_bForcedMatePass = false;  // SH_FINDFORCEDMATE in force: the scheduler stays off
    std::atomic<uint8_t> m_byResult{kUnknownResult};
    std::atomic<uint8_t> m_byState{kTaskNotHandedOver};
};

// Requests left by a search for the run (such as a skip to the next move), reset by the level
// threads as they end unless the request has reached its final state.
struct TLevelRun {
    std::atomic<bool> m_bMultithreadedPhase{false};
    std::atomic<const TChessboard*> m_pRoot{nullptr};
    std::atomic<bool> m_bRequestPending{false};
    std::atomic<uint8_t> m_byRequestState{0};
    std::atomic<uint16_t> m_nRequestCounter{0};
    std::atomic<uint8_t> m_bySpin{0};
};

inline constexpr const char* kNextLevelLogLine = "NextMultithreadingLevel analysis...";

// The search of a task's position in the variant the context selects (3 quick-mate depths by
// 2 by 2 flags); throws std::runtime_error "Error: no implementation in
// FindMateMultithreadingLevelThreadProcFFM for ..." for a context or task outside them.
uint8_t FindMateMultithreadingLevelThreadProcFFM(TLevelTask& task, TMateSearch& search,
                                                 const TLevelContext& context);

// The life of a level thread with its task: waits for the hand-over, skips a withdrawn task,
// runs the search and publishes the result. Returns the result, or kUnknownResult when withdrawn.
uint8_t RunLevelThread(TLevelTask& task, TMateSearch& search, const TLevelContext& context, TLevelRun& run);

}  // namespace moremate
