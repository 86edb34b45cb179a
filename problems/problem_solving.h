// Solving one record of a collection through the passes and comparing the keys with the
// record's answer.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <atomic>

#include "engine/run_register.h"
#include "problem_entry.h"
#include "settings/options.h"
#include "solve_report.h"

namespace moremate {

struct TSolveSettings {
    bool allSolutions = false;
    int stopOn = 0;  // 2, 3 or 4 solutions; 0: single, or every one with `allSolutions`
    bool bruteForce = false;
    bool hybrid = false;
    std::optional<std::string> heuristics;  // the text of pass 1's set instead of the engine's choice
    bool noHeuristics = false;
    bool noPassTwo = false;
    int timeLimitSeconds = 0;
    int threads = 1;
    bool solutionDetails = false;
    bool passStatus = false;  // pass status lines on stderr
};

// The register is kept from one problem to the next (its results hold for any problem) unless the
// options ask to clear it whenever solving starts.
// `progress` (may be null) counts the nodes searched while the problem runs.
TProblemReport SolveProblem(const ProblemEntry& entry, const TSolveSettings& settings,
                            const TOptions& options, std::unique_ptr<CRunRegister>& runRegister,
                            std::atomic<uint64_t>* progress);

}  // namespace moremate
