// The subcommands of the moremate program. Each registers its options on the parser and returns
// the function that runs it once the command line has been parsed; that returns the exit status.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "program_context.h"

namespace moremate::cli {

using Runner = std::function<int()>;

Runner AddPerftCommand(CLI::App& app);
Runner AddFenCommand(CLI::App& app);
Runner AddSolveCommand(CLI::App& app, TProgramContext& context);
Runner AddBenchCommand(CLI::App& app, TProgramContext& context);
Runner AddHeuristicsCommand(CLI::App& app);
Runner AddDefenceCommand(CLI::App& app, TProgramContext& context);
Runner AddRegisterCommand(CLI::App& app, TProgramContext& context);
Runner AddTestCommand(CLI::App& app, TProgramContext& context);
Runner AddScriptCommand(CLI::App& app, TProgramContext& context);
Runner AddPrecalcCommand(CLI::App& app, TProgramContext& context);
Runner AddTablebaseCommand(CLI::App& app, TProgramContext& context);
Runner AddCrashTestCommand(CLI::App& app, TProgramContext& context);

}  // namespace moremate::cli
