// The automatic save of a solving run's registers: into "SavedTmpRegisterData" of the program
// folder every AutoSaveMinutes minutes (AutoSaveMB bounding the file), with the descriptor that
// names the problem and the heuristics it started with.
#pragma once

#include <memory>

#include "engine/passes/relaxation.h"
#include "engine/passes/run_register.h"
#include "problems/format/problem_entry.h"
#include "registers/register_autosave.h"
#include "settings/options.h"

namespace moremate {

// Attached to both registers of the run; none when the options give no minutes.
// `userHeuristics`: pass 1's set was chosen by the user, not by the engine.
std::unique_ptr<CRegisterAutoSave> StartRunAutoSave(const ProblemEntry& entry, const TPassState& start,
                                                    bool userHeuristics, const TOptions& options,
                                                    CRunRegister& runRegister);

}  // namespace moremate
