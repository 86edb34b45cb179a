// Solving a directmate at the root: the keys (every first move that forces mate within the
// stipulation, in all-solutions mode) and the main line of each.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "core/chessboard.h"
#include "engine/search/mate_search.h"
#include "engine/threads/multithreading_levels.h"
#include "engine/threads/scheduler.h"

namespace moremate {

struct TSolveRequest {
    TChessboard position;  // prepared for solving: movesLeft is the stipulation in half-moves
    bool allSolutions = false;
    int maxKeys = 0;               // stop after this many keys; 0: one key, or every key with `allSolutions`
    std::vector<TMove> knownKeys;  // keys found by earlier passes: not searched again
    std::vector<TMove> preferredFirstMoves;  // tried first, in this order (the problem's sort indications)
    int timeLimitSeconds = 0;                // 0 = none
    int threads = 1;  // threads per multithreading level; results do not depend on them
    int levels = 1;   // multithreading levels: up to threads^levels main threads
    int processors = 0;  // no more main threads than this at once; 0 = no such cap
    TLevelContext levelContext;
    TSchedulerSettings scheduler;
    TJuggledMoves juggled;  // none: no scheduler
    TSearchEnvironment environment;
};

struct TKey {
    TMove move;
    std::vector<TMove> mainLine;  // starts with the key; Black's longest defence, White's quickest mate
};

struct TSolveResult {
    uint8_t result = kNoMate;  // kMate when a key was found, kDoubtful when the search was not conclusive
    bool stopped = false;      // stop request or time limit: the keys found so far
    std::vector<TKey> keys;
    uint64_t nodes = 0;
    int64_t msec = 0;
    std::string error;  // "Out of memory." when the search ran out of it
};

// Runs the search (one pass: the heuristics in force are the environment's hook); `stop` (may be
// null) ends it early from another thread.
TSolveResult Solve(const TSolveRequest& request, std::atomic<bool>* stop);

// The main line after `key`: Black picks the defence that delays mate longest, White the
// quickest mate. Needs the search's registers to be cheap.
std::vector<TMove> MainLine(TMateSearch& search, const TChessboard& root, const TMove& key);

}  // namespace moremate
