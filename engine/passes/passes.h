// The passes of one problem: pass 1 with the chosen heuristic set, relaxed passes 1b, 1c, ... and
// pass 2 without heuristics; the solution-count modes, brute force and hybrid brute force.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/lookup/region_solver.h"
#include "pass_threads.h"
#include "proof_number_pass.h"
#include "region_first_moves.h"
#include "relaxation.h"
#include "run_register.h"
#include "solver.h"

namespace moremate {

// The number of solutions after which a run stops; All never stops early.
enum class TSolutionCount : uint8_t { Single = 1, UpTo2 = 2, UpTo3 = 3, UpTo4 = 4, All = 0 };

// Full: one pass without heuristics for all solutions. Hybrid: the passes with heuristics for a
// single solution, then, once one is found, a pass without heuristics for the others.
enum class TBruteForce : uint8_t { Off, Full, Hybrid };

// The heuristics hook of a set; may return null. Pass 2 asks it for the empty set, so that quick
// mode's implicit heuristic can be supplied there too.
using FHookFactory = std::function<std::unique_ptr<CHeuristicHook>(const THeuristicSet&)>;

struct TPassRunRequest {
    TChessboard position;  // prepared for solving
    TPassState state;      // pass 1's set and the problem's flags
    TSolutionCount solutions = TSolutionCount::Single;
    TBruteForce bruteForce = TBruteForce::Off;
    std::vector<TMove> preferredFirstMoves;  // tried first in every pass
    int timeLimitSeconds = 0;                // for the whole series; 0 = none
    TRunThreads threads;                     // threads, multithreading levels and scheduler of every pass
    TSearchEnvironment environment;          // shared by the passes; `heuristics` is set per pass
    CRunRegister* runRegister = nullptr;     // when set: configured per pass, relaxed sets' lines removed
    FHookFactory hooks;
    // The proof-number pass before the others: `Auto` runs it for problems beyond the exhaustive
    // range, with the whole time limit for a single solution, three quarters of it otherwise (two
    // minutes without a limit).
    TProofNumberMode proofNumber = TProofNumberMode::Off;
    uint64_t proofNumberTableBytes = 64ULL << 20;
    // Small regions (blocked positions where only pieces move) settled by their own retrograde
    // analysis: the regions after the first moves before the passes, then in every pass.
    TRegionMode regions = TRegionMode::Off;
    TRelaxationEnvironment relaxation;               // its root is set to `position` by RunPasses
    std::function<void(const std::string&)> output;  // mode lines, phase texts and pass status lines
};

struct TPassKey {
    TKey key;
    std::string pass;     // "1", "1b", ..., "2"
    std::string setText;  // the heuristics of that pass
};

struct TPassSummary {
    std::string pass;
    std::string setText;
    uint8_t result = kNoMate;
    uint64_t nodes = 0;
    int64_t msec = 0;
};

struct TPassRunResult {
    uint8_t result = kNoMate;  // kMate with keys; else the verdict of the last pass
    bool stopped = false;
    bool fromRegister = false;  // known before any pass: the register held the root's result
    std::vector<TPassKey> keys;
    std::vector<TPassSummary> passes;
    uint64_t nodes = 0;
    std::string error;
    std::optional<TProofNumberPassResult> proofNumber;  // when the proof-number pass ran
    std::optional<TRegionStats> regions;                // when regions settled nodes
};

// Runs the series; `stop` (may be null) ends it early from another thread. Passes without
// heuristics are labelled "2" (also the brute force pass and the second phase of hybrid brute force).
TPassRunResult RunPasses(TPassRunRequest request, std::atomic<bool>* stop);

// "> Quick Mode implicit heuristics ON (see Options)" and the two safe mode lines.
std::string QuickModeLine(const TPassState& state);

// "Pass %d%s, %s%0.1f%% %lld" ("Pass pn, ..." for the proof-number pass, number -1) with " SH:%xh,TR:%d(%d)",
// then blanks and a carriage return. RunPasses writes it at the end of each pass: no prefix, 100.0%, the
// pass's nodes, the register's fill in percent and the number of doubtful configurations it holds.
std::string PassStatusLine(int number, const std::string& letter, const std::string& prefix, double percent,
                           long long count, uint32_t mask, int registerFill, int doubtfulConfigurations);

// "* Search for single solution", "* Search for no more than 2 solutions", ...
std::string SolutionCountText(TSolutionCount count);

}  // namespace moremate
