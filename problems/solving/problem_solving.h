// Solving one record of a collection through the passes and comparing the keys with the
// record's answer.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <atomic>

#include "engine/heuristics/heuristic_set.h"
#include "engine/passes/proof_number_pass.h"
#include "engine/passes/region_first_moves.h"
#include "engine/passes/run_register.h"
#include "engine/run/run_services.h"
#include "problems/format/problem_entry.h"
#include "run_checks.h"
#include "settings/options.h"
#include "solve_report.h"
#include "tablebase/lichess.h"

namespace moremate {

struct TSolveSettings {
    bool allSolutions = false;
    int stopOn = 0;  // 2, 3 or 4 solutions; 0: single, or every one with `allSolutions`
    bool bruteForce = false;
    bool hybrid = false;
    std::optional<std::string> heuristics;  // the text of pass 1's set instead of the engine's choice
    std::optional<THeuristicSet> userSet;   // pass 1's set itself, with the parameters no text holds
    std::string additionalHeuristics;       // tokens added to pass 1's set ("SafeMode", "DLFU(h1,d5)", ...)
    bool noHeuristics = false;
    bool noPassTwo = false;
    bool noRelaxation = false;  // pass 1's set is not relaxed (the record's DONTRELAXHEURISTICS for one run)
    TProofNumberMode proofNumber = TProofNumberMode::Auto;  // the proof-number pass before the others
    // Blocked positions settled by the retrograde analysis of their regions.
    TRegionMode regions = TRegionMode::Auto;
    int timeLimitSeconds = 0;
    int threads = 1;
    int levels = 1;          // multithreading levels
    int observerLevels = 0;  // White moves below the levels shown in the progress; 0 = off
    bool solutionDetails = false;
    bool passStatus = false;        // pass status lines on stderr
    TAvailableData available;       // what the record's requirement clauses may find
    std::string after;              // moves played after the position before it is analysed (PlayMovesAfter)
    TRunServices run;               // stop, pause, skip, progress ticks and messages of the interface
    bool autoSave = false;          // the registers saved every AutoSaveMinutes while the run lasts
    CLiChess* tablebase = nullptr;  // the online tablebase; none: it is not asked

    bool UserChoseSet() const { return heuristics || userSet; }
};

// Makes `runRegister` ready for the entry: a fresh register when there is none or the options
// ask to clear it whenever solving starts (else its results, which hold for any problem, are
// kept), then the saved register the entry refers to ("//@tmpreg="), whose load report it returns.
std::optional<std::string> PrepareRunRegister(const ProblemEntry& entry, const TOptions& options,
                                              std::unique_ptr<CRunRegister>& runRegister);

// Solves with a prepared register. A record expecting an order of White's first moves gets it
// compared (EXPECTEDSORTWHITEMOVESONLY: without solving, result "order only"); the checks after
// the run (run_checks.h) follow. `progress` (may be null) counts the nodes searched.
TProblemReport SolvePreparedProblem(const ProblemEntry& entry, const TSolveSettings& settings,
                                    const TOptions& options, CRunRegister& runRegister,
                                    std::atomic<uint64_t>* progress);

// Both: prepares the register, then solves; the load report goes into the report.
TProblemReport SolveProblem(const ProblemEntry& entry, const TSolveSettings& settings,
                            const TOptions& options, std::unique_ptr<CRunRegister>& runRegister,
                            std::atomic<uint64_t>* progress);

}  // namespace moremate
