// Saving a run register (both sides to move) to a file, as the register commands of the command
// line and of the window do.
#pragma once

#include <filesystem>

#include "engine/passes/run_register.h"

namespace moremate {

// Creates the folder of a register file to be saved; throws ChessException when the name is empty,
// names a folder, or its folder cannot be made (a path under a regular file).
void PrepareRegisterSavePath(const std::filesystem::path& file);

// Saves both registers of a run under a temporary name, then renames; the name chooses the form:
// ".lz4e.tmpReg" and ".lz4.tmpReg" are packed containers, anything else is plain. Creates the
// folder when it is missing.
void SaveRunRegister(const std::filesystem::path& file, CRunRegister& runRegister);

}  // namespace moremate
