// Insertion and lookup rates of the temporary register holding several million positions, from
// one thread and from two threads sharing the register. Positions are visited in random order:
// over the whole register (every access goes to main memory) and over a working set of 1 Ki
// positions (as a search revisits the positions of its current subtree).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "core/types.h"
#include "registers/aggregated_register.h"
#include "registers/register_size.h"
#include "split_mix.h"

namespace moremate {
namespace {

constexpr size_t kPositions = 4'000'000;
constexpr size_t kWorkingSet = 1'024;
constexpr uint32_t kCapacity = kPositions + kPositions / 8;

// Two kings and three to ten further pieces on distinct squares, like the positions of a problem.
TChessboardRegisterItem RandomPosition(uint64_t& state) {
    static constexpr uint8_t kTypes[] = {kPawn, kPawn, kPawn, kKnight, kBishop, kRook, kQueen};
    TChessboardRegisterItem item;
    const int nPieces = 2 + 3 + static_cast<int>(SplitMix(state) % 8);
    for (int i = 0; i < nPieces;) {
        const uint64_t r = SplitMix(state);
        const int square = static_cast<int>(r % 64);
        if (item.squares[square] != kEmpty) continue;
        const uint8_t colour = (i % 2 == 0) ? kWhite : kBlack;
        const uint8_t type = i < 2 ? uint8_t{kKing} : kTypes[(r >> 8) % std::size(kTypes)];
        item.squares[square] = MakePiece(colour, type);
        ++i;
    }
    return item;
}

// The first half is stored in the filled register, the second half never.
const std::vector<TChessboardRegisterItem>& Positions() {
    static const std::vector<TChessboardRegisterItem> positions = [] {
        std::vector<TChessboardRegisterItem> all(2 * kPositions);
        uint64_t state = 20240601;
        for (TChessboardRegisterItem& item : all) item = RandomPosition(state);
        return all;
    }();
    return positions;
}

// The stored positions in random order, copied so that reading the keys costs no cache misses.
const std::vector<TChessboardRegisterItem>& Shuffled() {
    static const std::vector<TChessboardRegisterItem> shuffled = [] {
        std::vector<TChessboardRegisterItem> stored(Positions().begin(), Positions().begin() + kPositions);
        std::shuffle(stored.begin(), stored.end(), std::mt19937_64(7));
        return stored;
    }();
    return shuffled;
}

uint16_t LevelOf(size_t i) {
    return static_cast<uint16_t>(5 + 2 * (i % 8));
}

std::unique_ptr<TAggregatedTemporaryChessboardRegister> NewRegister() {
    const TRegisterSize size = RegisterSizeForCapacity(kCapacity);
    return std::make_unique<TAggregatedTemporaryChessboardRegister>(size.nCapacity, size.nBuckets);
}

TAggregatedTemporaryChessboardRegister& FilledRegister() {
    static const std::unique_ptr<TAggregatedTemporaryChessboardRegister> reg = [] {
        auto filled = NewRegister();
        for (size_t i = 0; i < kPositions; ++i) filled->Insert(LevelOf(i), Positions()[i], i % 3 != 0);
        return filled;
    }();
    return *reg;
}

std::unique_ptr<TAggregatedTemporaryChessboardRegister> g_pFresh;

void CreateFresh(const benchmark::State&) {
    Positions();
    g_pFresh = NewRegister();
}
void DropFresh(const benchmark::State&) {
    g_pFresh.reset();
}
void PrepareFilled(const benchmark::State&) {
    FilledRegister();
    Shuffled();
}

// Where a thread starts in a range of `nRange` positions, so that threads work apart.
size_t FirstIndex(const benchmark::State& state, size_t nRange) {
    return nRange / static_cast<size_t>(state.threads()) * static_cast<size_t>(state.thread_index());
}

// Each iteration stores a new position; the register grows to kPositions entries.
void BM_InsertNew(benchmark::State& state) {
    const auto& positions = Positions();
    size_t i = FirstIndex(state, kPositions);
    for (auto _ : state) {
        benchmark::DoNotOptimize(g_pFresh->Insert(LevelOf(i), positions[i], i % 3 != 0));
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_InsertNew)->Setup(CreateFresh)->Teardown(DropFresh)->Iterations(kPositions)->UseRealTime();
BENCHMARK(BM_InsertNew)
    ->Setup(CreateFresh)
    ->Teardown(DropFresh)
    ->Iterations(kPositions / 2)
    ->Threads(2)
    ->UseRealTime();

// Each iteration adds a deeper no-mate to a stored position; range(0) positions are visited.
void BM_InsertExisting(benchmark::State& state) {
    TAggregatedTemporaryChessboardRegister& reg = FilledRegister();
    const auto& positions = Shuffled();
    const auto nRange = static_cast<size_t>(state.range(0));
    size_t i = FirstIndex(state, nRange);
    for (auto _ : state) {
        benchmark::DoNotOptimize(reg.Insert(LevelOf(i) + 2, positions[i], false));
        if (++i == nRange) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_InsertExisting)
    ->Setup(PrepareFilled)
    ->Arg(kWorkingSet)
    ->Arg(kPositions)
    ->ThreadRange(1, 2)
    ->UseRealTime();

// Each iteration asks about a stored position; range(0) positions are visited.
void BM_LookupHit(benchmark::State& state) {
    const TAggregatedTemporaryChessboardRegister& reg = FilledRegister();
    const auto& positions = Shuffled();
    const auto nRange = static_cast<size_t>(state.range(0));
    size_t i = FirstIndex(state, nRange);
    for (auto _ : state) {
        benchmark::DoNotOptimize(reg.Answer(LevelOf(i), positions[i]));
        if (++i == nRange) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LookupHit)
    ->Setup(PrepareFilled)
    ->Arg(kWorkingSet)
    ->Arg(kPositions)
    ->ThreadRange(1, 2)
    ->UseRealTime();

// Each iteration asks about a position the register does not hold.
void BM_LookupMiss(benchmark::State& state) {
    const TAggregatedTemporaryChessboardRegister& reg = FilledRegister();
    const auto& positions = Positions();
    size_t i = kPositions + FirstIndex(state, kPositions);
    for (auto _ : state) {
        benchmark::DoNotOptimize(reg.Answer(9, positions[i]));
        if (++i == 2 * kPositions) i = kPositions;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LookupMiss)->Setup(PrepareFilled)->ThreadRange(1, 2)->UseRealTime();

// As a search can do it with the positions of a move list: the bucket words of a batch of 16
// are prefetched, then their entries, then the positions are asked about one by one, so that the
// memory accesses of the batch overlap.
void BM_LookupHitPrefetched(benchmark::State& state) {
    constexpr size_t kBatch = 16;
    const TAggregatedTemporaryChessboardRegister& reg = FilledRegister();
    const auto& positions = Shuffled();
    size_t i = FirstIndex(state, kPositions) / kBatch * kBatch;
    for (auto _ : state) {
        if (i % kBatch == 0) {
            for (size_t j = i; j < i + kBatch; ++j) reg.PrefetchBucket(RegisterHash(positions[j]));
            for (size_t j = i; j < i + kBatch; ++j) reg.Prefetch(RegisterHash(positions[j]));
        }
        benchmark::DoNotOptimize(reg.Answer(LevelOf(i), positions[i]));
        if (++i == kPositions) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LookupHitPrefetched)->Setup(PrepareFilled)->ThreadRange(1, 2)->UseRealTime();

// The walks over the whole register: a census reads every entry; an emptying removes the lowest
// level (an eighth of the entries) from a register filled anew before each run.
void BM_Census(benchmark::State& state) {
    const TAggregatedTemporaryChessboardRegister& reg = FilledRegister();
    for (auto _ : state) benchmark::DoNotOptimize(reg.Census());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPositions));
}
BENCHMARK(BM_Census)->Setup(PrepareFilled)->Unit(benchmark::kMillisecond)->UseRealTime();

void FillFresh(const benchmark::State& state) {
    CreateFresh(state);
    for (size_t i = 0; i < kPositions; ++i) g_pFresh->Insert(LevelOf(i), Positions()[i], i % 3 != 0);
}

void BM_RemoveLowestLevel(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(g_pFresh->RemoveNMovers(LevelOf(0)));
    state.SetItemsProcessed(static_cast<int64_t>(kPositions));
}
BENCHMARK(BM_RemoveLowestLevel)
    ->Setup(FillFresh)
    ->Teardown(DropFresh)
    ->Iterations(1)
    ->Repetitions(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace moremate
