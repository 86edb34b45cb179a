#include <fmt/core.h>
#include <chrono>

#include "commands.h"
#include "core/chess_exception.h"
#include "core/notation.h"
#include "core/perft.h"
#include "position_arg.h"

namespace moremate::cli {
namespace {

struct PerftArgs {
    std::string fen;
    int depth = 1;
    bool divide = false;
};

int RunPerft(const PerftArgs& args) {
    TChessboard board;
    ReadCommandLinePosition(args.fen, board);
    const auto start = std::chrono::steady_clock::now();
    uint64_t total = 0;
    if (args.divide) {
        for (const TPerftDivision& d : PerftDivide(board, args.depth)) {
            fmt::print("{} {}\n", MoveToText(board, d.move), d.nodes);
            total += d.nodes;
        }
    } else {
        total = Perft(board, args.depth);
    }
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    fmt::print(stderr, "{} ms, {:.1f} Mnodes/s\n", ms.count(),
               static_cast<double>(total) / 1000.0 / static_cast<double>(std::max<int64_t>(ms.count(), 1)));
    fmt::print("{}\n", total);
    return kExitOk;
}

}  // namespace

Runner AddPerftCommand(CLI::App& app) {
    auto args = std::make_shared<PerftArgs>();
    CLI::App* cmd =
        app.add_subcommand("perft", "Count the legal move sequences of DEPTH half-moves from FEN");
    cmd->add_option("fen", args->fen, "Position in FEN (the side-to-move field is honoured)")->required();
    cmd->add_option("depth", args->depth, "Half-moves to count")->required()->check(CLI::Range(1, 32));
    cmd->add_flag("--divide", args->divide, "One line per root move with its count");
    return [args] { return RunPerft(*args); };
}

}  // namespace moremate::cli
