// Region analysis: the blocked long moremover G. Popov #24 (longmates.cp), after its key and
// Black's best defence, 1.g7 Bf7 (White's king walks round to take d6 and back while the knight
// holds the Black king), and from the start. One solve from nothing each; the counters give the
// distance (mate in 23 moves) or the first moves proven, and what the solver built for it.
#include <benchmark/benchmark.h>

#include "core/fen.h"
#include "core/validation.h"
#include "engine/lookup/region_solver.h"
#include "engine/passes/region_first_moves.h"

namespace moremate {
namespace {

void BM_RegionPopovAfterKey(benchmark::State& state) {
    TChessboard board;
    ReadFen("8/5bP1/3p4/3p1p2/N1pPkp2/1pP2p2/3K1P2/8 w - - 0 1", board);
    PrepareForSolving(board, 45, true);
    for (auto _ : state) {
        CRegionSolver solver(TRegionLimits{}, nullptr);
        const uint8_t distance = solver.Distance(board, true, board.movesLeft);
        const TRegionStats stats = solver.Stats();
        state.counters["distance"] = distance;
        state.counters["regions"] = static_cast<double>(stats.regions);
        state.counters["positions"] = static_cast<double>(stats.nodes);
    }
}

BENCHMARK(BM_RegionPopovAfterKey)->Unit(benchmark::kSecond)->Iterations(1);

// The whole problem, #24: the regions after White's first moves, solved before any pass, prove
// the key 1.g7.
void BM_RegionPopovFirstMoves(benchmark::State& state) {
    TChessboard board;
    ReadFen("4b3/8/3p2P1/3p1p2/N1pPkp2/1pP2p2/3K1P2/8 w - - 0 1", board);
    PrepareForSolving(board, 47, true);
    for (auto _ : state) {
        CRegionSolver solver(TRegionLimits{}, nullptr);
        const std::vector<TMove> first = RegionFirstMoves(board, solver, 600000, 1);
        const TRegionStats stats = solver.Stats();
        state.counters["proven"] = static_cast<double>(first.size());
        state.counters["regions"] = static_cast<double>(stats.regions);
        state.counters["positions"] = static_cast<double>(stats.nodes);
    }
}

BENCHMARK(BM_RegionPopovFirstMoves)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
}  // namespace moremate
