#include <fmt/core.h>

#include "commands.h"
#include "core/chess_exception.h"
#include "engine/heuristics/heuristic_text.h"
#include "engine/passes/relaxation.h"
#include "position_arg.h"

namespace moremate::cli {
namespace {

struct HeuristicsArgs {
    std::string path;
    std::string fen;
};

// The relaxation path of a set: pass 1 and each relaxed pass with its heuristics. Position-
// dependent steps are decided on the given position, else on an empty-board stand-in.
int RunHeuristics(const HeuristicsArgs& args) {
    TPassState state;
    state.set = ReadHeuristicSetText(args.path).m_set;
    TChessboard root;
    ReadCommandLinePosition(args.fen, root);
    TRelaxationEnvironment env;
    env.root = &root;
    fmt::print("{}\n", RelaxationPathText(state, env));
    return kExitOk;
}

}  // namespace

Runner AddHeuristicsCommand(CLI::App& app) {
    auto args = std::make_shared<HeuristicsArgs>();
    args->fen = "4k3/8/8/8/8/8/8/4K3 w - - 0 1";
    CLI::App* cmd = app.add_subcommand("heuristics", "Show how a heuristic set is relaxed pass after pass");
    cmd->add_option("--path", args->path, "The set as text, e.g. \"SH_AREKINGSNEAR, SH_DONTLOSEANYFIGURES\"")
        ->required();
    cmd->add_option("--fen", args->fen, "The position whose features decide the position-dependent steps");
    return [args] { return RunHeuristics(*args); };
}

}  // namespace moremate::cli
