#include <fmt/core.h>

#include <chrono>
#include <memory>

#include "commands.h"
#include "core/fen.h"
#include "core/validation.h"
#include "engine/passes/run_register.h"
#include "engine/passes/solver.h"

namespace moremate::cli {
namespace {

struct BenchProblem {
    const char* fen;
    int moves;
};

// A fixed set of directmates solved in all-solutions mode, one thread: the total node count is
// the search's signature, so any change to the search shows as a different number. On more
// threads the keys are the same and the time tells how the threads share the work; the nodes then
// vary from run to run.
constexpr BenchProblem kBenchProblems[] = {
    {"8/8/pQ6/p1P5/P1p5/5p2/2k2P2/R3K3 w Q - 0 1", 3},
    {"B3k2r/2pp1p1p/1p3B2/1np1p2p/Q7/8/8/R3K3 w Qk - 0 1", 4},
    {"8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1", 3},
    {"6r1/3p3P/8/2B5/8/2K5/8/2k5 w - - 0 1", 4},
    {"8/7P/p7/6B1/5K2/8/8/6k1 w - - 0 1", 4},
    {"1r6/7k/1p5p/2pNRP2/2P4p/8/6PK/2B5 w - - 0 1", 5},
    {"3n4/1ppKN2B/8/b3PR1R/Q2Bkp2/5N1b/2P1PPr1/3r1q2 w - - 0 1", 2},
    {"5N2/3p1Q2/3r4/2P1k3/2K2p2/2P2P2/8/8 w - - 0 1", 2},
};

int RunBench(TProgramContext& context, int threads) {
    uint64_t nodes = 0;
    const auto start = std::chrono::steady_clock::now();
    for (const BenchProblem& p : kBenchProblems) {
        CRunRegister runRegister(context.options);
        TSolveRequest request;
        ReadFen(p.fen, request.position);
        PrepareForSolving(request.position, 2 * p.moves - 1, true);
        request.allSolutions = true;
        request.threads = threads;
        request.environment.store = &runRegister;
        const TSolveResult result = Solve(request, nullptr);
        fmt::print("#{} {}: {} key(s), {} nodes, {} ms\n", p.moves, p.fen, result.keys.size(), result.nodes,
                   result.msec);
        nodes += result.nodes;
    }
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    fmt::print("Total time (ms) : {}\nNodes searched  : {}\nNodes/second    : {}\n", ms.count(), nodes,
               nodes * 1000 / static_cast<uint64_t>(std::max<int64_t>(ms.count(), 1)));
    return kExitOk;
}

}  // namespace

Runner AddBenchCommand(CLI::App& app, TProgramContext& context) {
    auto threads = std::make_shared<int>(1);
    CLI::App* cmd =
        app.add_subcommand("bench", "Solve a fixed set of problems: node signature (on one thread) and time");
    cmd->add_option("--threads", *threads,
                    "Threads for the first moves (default 1; the node signature is that of one thread)")
        ->check(CLI::Range(1, 64));
    return [&context, threads] { return RunBench(context, *threads); };
}

}  // namespace moremate::cli
