#include <fmt/core.h>

#include "commands.h"
#include "engine/multithreading_levels.h"
#include "problems/script.h"
#include "problems/solved_problems_db.h"
#include "settings/machine.h"
#include "settings/program_folder.h"

namespace moremate::cli {
namespace {

struct ScriptArgs {
    std::string file;
    std::filesystem::path logFolder = ".";
    int threads = 1;
    int levels = -1;  // the options' MultithreadingLevels
};

int RunScript(const ScriptArgs& args, TProgramContext& context) {
    TSolveSettings solve;
    solve.threads = args.threads;
    TScriptEnvironment environment{context.options, std::move(solve), {}, {}, [](const std::string& line) {
                                       fmt::print("{}", line);
                                       std::fflush(stdout);
                                   }};
    const TThreadSettings defaults = DefaultThreadSettings(context.options.m_nMultithreadingLevels);
    environment.solve.levels = args.levels >= 0 ? args.levels : static_cast<int>(defaults.levels);
    environment.testSettings.logFolder = args.logFolder;
    environment.testSettings.databaseFolder = ProgramFolder() / kSolvedProblemsFolder;
    try {
        return RunScriptFile(args.file, environment).bAnyFailed ? kExitMismatch : kExitOk;
    } catch (const ChessException& e) {
        fmt::print(stderr, "{}: {}\n", args.file, e.what());
        return kExitBadInput;
    }
}

}  // namespace

Runner AddScriptCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<ScriptArgs>();
    CLI::App* cmd = app.add_subcommand("script", "Run a .vrs script of regression tests");
    cmd->add_option("file", args->file, "Script (.vrs)")->required()->check(CLI::ExistingFile);
    cmd->add_option("--log-folder", args->logFolder, "Folder of the RegressionTest_ logs (default: .)")
        ->check(CLI::ExistingDirectory);
    args->threads = static_cast<int>(LogicalProcessorCount());
    cmd->add_option("--threads", args->threads, "Threads on the first moves (default: the processors)")
        ->check(CLI::Range(1, 64));
    cmd->add_option("--levels", args->levels,
                    "Multithreading levels: up to T^L main threads (default: options.ini)")
        ->check(CLI::Range(0, 64));
    return [args, &context] { return RunScript(*args, context); };
}

}  // namespace moremate::cli
