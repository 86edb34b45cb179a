// Reading a saved register file (and its Black-to-move companion) into a fresh run register.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "engine/passes/run_register.h"
#include "problems/annotations/register_saving.h"
#include "program_context.h"

namespace moremate::cli {

// Reports the load on stderr; throws ChessException "<file>: <message>" when it cannot be read.
std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context);

// Finishes or clears the saves of registers in the program folder that a killed process left
// behind, saying so on stderr.
void ReportInterruptedSaves();

}  // namespace moremate::cli
