#include <fmt/core.h>

#include "commands.h"
#include "problems/format/collection_reader.h"
#include "problems/regression/regression_test.h"
#include "problems/regression/solved_problems_db.h"
#include "problems/solving/tablebase_access.h"
#include "question_prompt.h"
#include "settings/program_folder.h"
#include "thread_options.h"

namespace moremate::cli {
namespace {

struct TestArgs {
    std::string file;
    TRegressionTestSettings settings;
    TSolveSettings solve;
    bool yes = false, no = false;  // the answer to the RunRegressionTestInLoop question
};

// With RunRegressionTestInLoop on and the question answered yes, the test runs until Ctrl-C,
// or as many times as --loops says.
void ApplyLoopSetting(TestArgs& args, const CLI::App& cmd, TProgramContext& context) {
    CQuestionPrompt prompt(context.reporter, args.yes || args.no ? std::optional(args.yes) : std::nullopt);
    if (RunInLoop(context.options, TUserQuestions{&prompt, context.options.m_nLanguageId}) &&
        cmd.count("--loops") == 0)
        args.settings.nLoops = kUntilStopped;
}

void PrintLine(const std::string& line) {
    fmt::print("{}", line);
    std::fflush(stdout);
}

int RunTest(TestArgs& args, const CLI::App& cmd, TProgramContext& context) {
    ApplyThreadDefaults(args.solve, context.options);
    const std::unique_ptr<CTablebaseService> tablebase = TablebaseForRuns(context.options, context.reporter);
    args.solve.tablebase = LiChessOf(tablebase);
    std::vector<ProblemEntry> entries;
    try {
        ReadCollectionFile(args.file, entries, false, TCollectionReading{{&context.reporter, 1}, {}});
        ApplyLoopSetting(args, cmd, context);
        args.settings.databaseFolder = ProgramFolder() / kSolvedProblemsFolder;
        const TRegressionTestResult result =
            RunRegressionTest(entries, args.file, args.settings, args.solve, context.options, PrintLine);
        return result.bAnyFailed ? kExitMismatch : kExitOk;
    } catch (const ChessException& e) {
        fmt::print(stderr, "{}: {}\n", args.file, e.what());
        return kExitBadInput;
    }
}

}  // namespace

Runner AddTestCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<TestArgs>();
    CLI::App* cmd =
        app.add_subcommand("test", "Regression test: solve a .cp collection and compare the answers");
    cmd->add_option("file", args->file, "Problem collection (.cp)")->required()->check(CLI::ExistingFile);
    cmd->add_flag("--short", args->settings.bShort, "Short test: ShortRegTestSeconds per problem");
    cmd->add_flag("--with-mirror", args->settings.bWithMirror, "Also the mirrored positions");
    cmd->add_option(
           "--loops", args->settings.nLoops,
           "Runs of the whole test (RunRegressionTestInLoop answered yes: until Ctrl-C unless given)")
        ->check(CLI::Range(1, 1000000));
    cmd->add_option("--log-folder", args->settings.logFolder,
                    "Folder of the RegressionTest_ log (default: .)")
        ->check(CLI::ExistingDirectory);
    AddThreadOptions(cmd, args->solve);
    cmd->add_flag(
        "--yes", args->yes,
        "Answer yes to the RunRegressionTestInLoop question (else asked on a terminal; no otherwise)");
    cmd->add_flag("--no", args->no, "Answer no to the RunRegressionTestInLoop question")->excludes("--yes");
    return [args, cmd, &context] { return RunTest(*args, *cmd, context); };
}

}  // namespace moremate::cli
