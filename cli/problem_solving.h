// Solving one record of a collection and comparing the keys with the record's answer.
#pragma once

#include "commands.h"
#include "engine/run_register.h"
#include "problems/problem_entry.h"
#include "solve_report.h"

namespace moremate::cli {

struct TSolveSettings {
    bool allSolutions = false;
    int timeLimitSeconds = 0;
};

// The register is kept from one problem to the next (its results hold for any problem) unless the
// options ask to clear it whenever solving starts.
TProblemReport SolveProblem(const ProblemEntry& entry, const TSolveSettings& settings, TProgramContext& context,
                            std::unique_ptr<CRunRegister>& runRegister);

}  // namespace moremate::cli
