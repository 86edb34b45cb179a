// The threads of one pass: threads per level, levels and what the level threads' searches depend
// on, from the run's thread settings and the pass's heuristics.
#pragma once

#include <cstdint>

#include "engine/threads/scheduler.h"
#include "relaxation.h"
#include "solver.h"

namespace moremate {

struct TRunThreads {
    int threads = 1;  // per multithreading level
    int levels = 1;   // multithreading levels; 0 = one thread
    TSchedulerSettings scheduler;
    // O observer levels: each main thread shows the first L + O White moves of its line; 0 = off.
    int observerLevels = 0;
};

// The hybrid brute force phase of a pass, as the level tasks carry it.
inline constexpr uint8_t kNotHybrid = 255;
inline constexpr uint8_t kHybridFirstPhase = 0;
inline constexpr uint8_t kHybridSecondPhase = 1;

// Sets the pass's threads, levels and level context; the main threads active at once are no more
// than the machine's processors (the scheduler may lend the rest of the T^L slots). The one heuristic pass of
// a series without relaxation and pass 2 (`onlyPass`) gets additional threads up to the machine's processors;
// the second phase of hybrid brute force runs on every processor without scheduler and with the default
// quick-mate depth. Call it once the pass's environment is set.
void ConfigurePassThreads(TSolveRequest& pass, const TRunThreads& run, const TPassState& state, uint8_t phase,
                          bool onlyPass);

// The threads of the proof-number pass: T^L, at least one level, no more than the processors.
int ProofNumberPassThreads(const TRunThreads& run);

}  // namespace moremate
