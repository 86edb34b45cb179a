#include <fmt/core.h>

#include "commands.h"
#include "core/chess_exception.h"
#include "core/notation.h"
#include "engine/passes/run_register.h"
#include "engine/search/black_defence.h"
#include "problem_arg.h"
#include "problems/solving/solving_task.h"

namespace moremate::cli {
namespace {

struct DefenceArgs {
    std::string file;
    unsigned problem = 0;
    std::string after;  // White's first move; default: the first move of the record's answer
};

int RunDefence(const DefenceArgs& args, TProgramContext& context) {
    std::vector<ProblemEntry> entries = ReadProblems(args.file, context);
    const ProblemEntry& entry = FindProblem(entries, args.problem);
    TSolvingTask task = MakeSolvingTask(entry);
    task.position.problem = &task.root;
    TChessboard afterKey;
    if (!args.after.empty()) {
        MakeMove(task.position, args.after, afterKey);
    } else if (!entry.m_vAnswer.empty()) {
        MakeMove(task.position, MoveToText(task.position, entry.m_vAnswer.front()), afterKey);
    } else {
        throw ChessException("No White move to defend against: give --after or an Answer in the record");
    }
    CRunRegister runRegister(context.options);
    TSearchEnvironment env;
    env.store = &runRegister;
    TMateSearch search(env);
    fmt::print("Thread looking for black's defence in problem {}\n", entry.m_nNumber);
    fmt::print("{}\n", DefenceText(afterKey, FindBlackDefence(search, afterKey)));
    return kExitOk;
}

}  // namespace

Runner AddDefenceCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<DefenceArgs>();
    CLI::App* cmd = app.add_subcommand("defence", "Find Black's best defence after White's first move");
    cmd->add_option("file", args->file, "Problem collection (.cp)")->required()->check(CLI::ExistingFile);
    cmd->add_option("--problem", args->problem, "Problem number")->required();
    cmd->add_option("--after", args->after,
                    "White's first move in long notation (default: the answer's first)");
    return [args, &context] { return RunDefence(*args, context); };
}

}  // namespace moremate::cli
