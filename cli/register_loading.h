// Reading a saved register file (and its Black-to-move companion) into a fresh run register.
#pragma once

#include <memory>
#include <string>

#include "commands.h"
#include "engine/run_register.h"

namespace moremate::cli {

// Reports the load on stderr; throws ChessException "<file>: <message>" when it cannot be read.
std::unique_ptr<CRunRegister> LoadRunRegister(const std::string& file, TProgramContext& context);

}  // namespace moremate::cli
