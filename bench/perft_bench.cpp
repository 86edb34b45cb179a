// Move generator speed: perft of the standard positions, leaves counted per second.
#include <benchmark/benchmark.h>

#include "core/fen.h"
#include "core/perft.h"
#include "core/validation.h"

namespace moremate {
namespace {

TChessboard Position(const char* fen) {
    TChessboard board;
    ReadFen(fen, board);
    PrepareForSolving(board, FenWhiteToMove(fen) ? 1 : 2, true);
    return board;
}

void BM_Perft(benchmark::State& state, const char* fen, int depth) {
    const TChessboard board = Position(fen);
    uint64_t nodes = 0;
    for (auto _ : state) nodes += Perft(board, depth);
    state.counters["leaves/s"] = benchmark::Counter(static_cast<double>(nodes), benchmark::Counter::kIsRate);
}

BENCHMARK_CAPTURE(BM_Perft, initial_6, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 6)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Perft, kiwipete_5, "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Perft, endgame_6, "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 6)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace moremate
