// The subcommands of the moremate program. Each registers its options on the parser and returns
// the function that runs it once the command line has been parsed; that returns the exit status.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "settings/options.h"
#include "settings/reporter.h"

namespace moremate::cli {

// Exit statuses shared by all commands.
inline constexpr int kExitOk = 0;
inline constexpr int kExitMismatch = 1;
inline constexpr int kExitBadInput = 2;

using Runner = std::function<int()>;

// What every command may use: the settings read at start-up and where reports go.
struct TProgramContext {
    TOptions options;
    CReporter& reporter;
    CReporter& questions;  // the reporter, with questions asked on a terminal only (else "no")
};

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
