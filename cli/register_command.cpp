#include <fmt/core.h>

#include <cstring>

#include "commands.h"
#include "core/fen.h"
#include "engine/run_register.h"
#include "register_loading.h"
#include "registers/register_file.h"
#include "registers/register_statistics.h"

namespace moremate::cli {
namespace {

struct RegisterArgs {
    std::string file;
    size_t limit = 100;  // dump: rows at most
};

int RunStats(const RegisterArgs& args, TProgramContext& context) {
    const std::unique_ptr<CRunRegister> r = LoadRunRegister(args.file, context);
    fmt::print("Positions with White to move:\n{}\n\n{}\n\n", RegisterStatistics(r->WhiteToMove()),
               RegisterSummary(r->WhiteToMove()));
    fmt::print("Positions with Black to move:\n{}\n\n{}\n", RegisterStatistics(r->BlackToMove()),
               RegisterSummary(r->BlackToMove()));
    return kExitOk;
}

std::string Placement(const TChessboardRegisterEntry& entry) {
    TChessboard board;
    std::memcpy(board.squares, entry.key.squares, 64);
    return WriteFenPlacement(board);
}

int RunDump(const RegisterArgs& args, TProgramContext& context) {
    const std::unique_ptr<CRunRegister> r = LoadRunRegister(args.file, context);
    fmt::print("Side\tHeuristics\tHeurParams\tnMovesMate/Doubtful\tnMovesNoMate/NotDoubtful\tPosition\n");
    size_t rows = 0;
    auto dump = [&](const char* side, const TAggregatedTemporaryChessboardRegister& reg) {
        reg.ForEachConfigurationEntry([&](uint64_t configuration, const TChessboardRegisterEntry& entry) {
            if (rows++ >= args.limit) return;
            fmt::print("{}\t{:08x}\t{:08x}\t{}\t{}\t{}\n", side, static_cast<uint32_t>(configuration),
                       static_cast<uint32_t>(configuration >> 32), entry.MovesMate, entry.MovesNoMate,
                       Placement(entry));
        });
    };
    dump("w", r->WhiteToMove());
    dump("b", r->BlackToMove());
    if (rows > args.limit) fmt::print("... {} more\n", rows - args.limit);
    return kExitOk;
}

}  // namespace

Runner AddRegisterCommand(CLI::App& app, TProgramContext& context) {
    auto args = std::make_shared<RegisterArgs>();
    CLI::App* cmd = app.add_subcommand("register", "Look into a saved temporary register (.tmpReg)");
    cmd->require_subcommand(1);
    CLI::App* stats = cmd->add_subcommand("stats", "Load a register file and print its statistics");
    stats->add_option("file", args->file, "Register file")->required();
    CLI::App* dump = cmd->add_subcommand("dump", "Load a register file and list its entries");
    dump->add_option("file", args->file, "Register file")->required();
    dump->add_option("--limit", args->limit, "Rows at most (default 100)");
    return [args, &context, stats] {
        return stats->parsed() ? RunStats(*args, context) : RunDump(*args, context);
    };
}

}  // namespace moremate::cli
