// Reading a saved register file (and its Black-to-move companion) into a fresh run register, and
// saving a run register.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "commands.h"
#include "engine/passes/run_register.h"

namespace moremate::cli {

// Reports the load on stderr; throws ChessException "<file>: <message>" when it cannot be read.
std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context);

// Finishes or clears the saves of registers in the program folder that a killed process left
// behind, saying so on stderr.
void ReportInterruptedSaves();

// Creates the folder of a register file to be saved; throws ChessException when the name is empty,
// names a folder, or its folder cannot be made (a path under a regular file).
void PrepareRegisterSavePath(const std::filesystem::path& file);

// Saves both registers of a run under a temporary name, then renames; the name chooses the form:
// ".lz4e.tmpReg" and ".lz4.tmpReg" are packed containers, anything else is plain. Creates the
// folder when it is missing.
void SaveRunRegister(const std::filesystem::path& file, CRunRegister& runRegister);

}  // namespace moremate::cli
