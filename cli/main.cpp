// moremate: the command-line front end of the solver.
#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <map>

#include "commands.h"
#include "core/chess_exception.h"
#include "diagnostics/crash_handler.h"
#include "precalc/global/global_registers.h"
#include "question_prompt.h"
#include "register_loading.h"
#include "settings/program_folder.h"

#ifndef MOREMATE_VERSION
#define MOREMATE_VERSION "0.0.0"
#endif

int main(int argc, char** argv) {
    using namespace moremate;
    using namespace moremate::cli;
    // Past a file-size limit a write then fails with EFBIG and is reported, the old file kept.
    std::signal(SIGXFSZ, SIG_IGN);
    CLI::App app{"moremate: solver of orthodox chess directmate problems (#n), long moremovers included"};
    app.set_version_flag("--version", std::string("moremate ") + MOREMATE_VERSION);
    app.require_subcommand(1);
    CStderrReporter reporter;
    CQuestionPrompt questions(reporter, std::nullopt);
    TProgramContext context{ReadOptions(OptionsFilePath(), reporter), reporter, questions};
    ReportInterruptedSaves();  // of registers, by a process killed while saving
    diagnostics::InstallCrashHandler(context.options);
    // Loading precalculated data may ask whether to recompress a file.
    TGlobalRegisters::Instance().Configure(TGlobalRegisterSettings::FromOptions(context.options),
                                           &context.questions);
    std::map<std::string, Runner> runners;
    runners["perft"] = AddPerftCommand(app);
    runners["fen"] = AddFenCommand(app);
    runners["solve"] = AddSolveCommand(app, context);
    runners["bench"] = AddBenchCommand(app, context);
    runners["heuristics"] = AddHeuristicsCommand(app);
    runners["defence"] = AddDefenceCommand(app, context);
    runners["register"] = AddRegisterCommand(app, context);
    runners["test"] = AddTestCommand(app, context);
    runners["script"] = AddScriptCommand(app, context);
    runners["precalc"] = AddPrecalcCommand(app, context);
    runners["tablebase"] = AddTablebaseCommand(app, context);
    runners["crash-test"] = AddCrashTestCommand(app, context);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return kExitBadInput;
    }
    // A command stops at the first fault in its input with its message: bad input, status 2.
    try {
        for (const CLI::App* sub : app.get_subcommands()) return runners.at(sub->get_name())();
    } catch (const ChessException& e) {
        fmt::print(stderr, "{}\n", e.what());
    } catch (const std::exception& e) {  // a failure no command foresaw
        fmt::print(stderr, "Error: {}\n", e.what());
        return kExitMismatch;
    }
    return kExitBadInput;
}
