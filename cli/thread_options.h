// The thread options that every solving command takes: --threads and --levels.
#pragma once

#include "commands.h"
#include "problems/solving/problem_solving.h"

namespace moremate::cli {

// Adds --threads (default: the logical processors) and --levels (default: options.ini, filled in
// by ApplyThreadDefaults once the program has read its options).
void AddThreadOptions(CLI::App* cmd, TSolveSettings& settings);
void ApplyThreadDefaults(TSolveSettings& settings, const TOptions& options);

}  // namespace moremate::cli
