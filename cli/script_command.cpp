#include <fmt/core.h>

#include "commands.h"
#include "problems/regression/script.h"
#include "problems/regression/solved_problems_db.h"
#include "problems/solving/tablebase_access.h"
#include "settings/program_folder.h"
#include "thread_options.h"

namespace moremate::cli {
namespace {

struct ScriptArgs {
    std::string file;
    std::filesystem::path logFolder = ".";
    TSolveSettings solve;  // the thread settings
};

int RunScript(ScriptArgs& args, TProgramContext& context) {
    ApplyThreadDefaults(args.solve, context.options);
    const std::unique_ptr<CTablebaseService> tablebase = TablebaseForRuns(context.options, context.reporter);
    args.solve.tablebase = LiChessOf(tablebase);
    TScriptEnvironment environment{context.options, args.solve, {}, {}, [](const std::string& line) {
                                       fmt::print("{}", line);
                                       std::fflush(stdout);
                                   }};
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
    AddThreadOptions(cmd, args->solve);
    return [args, &context] { return RunScript(*args, context); };
}

}  // namespace moremate::cli
