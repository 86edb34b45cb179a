// Register files: saving and loading a register plain and packed, compressing the stream into a
// container on one and two threads, and decoding "LZ4e" against LZ4's own decoder on the same
// data. The register holds 1,000,000 entries; MOREMATE_BENCH_REGISTER_ENTRIES sets another count
// (10000000 for the full-size figures).
#include <benchmark/benchmark.h>
#include <lz4.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <vector>

#include "core/types.h"
#include "registers/aggregated_register.h"
#include "registers/lz4e_codec.h"
#include "registers/register_file.h"
#include "registers/register_packing.h"
#include "registers/register_stream.h"
#include "split_mix.h"

namespace moremate {
namespace {

size_t EntryCount() {
    const char* value = std::getenv("MOREMATE_BENCH_REGISTER_ENTRIES");
    return value ? std::strtoull(value, nullptr, 10) : 1'000'000;
}

// Two kings apart and three to ten further pieces, pawns off the first and last ranks.
TChessboardRegisterItem RandomPosition(uint64_t& state) {
    static constexpr uint8_t kTypes[] = {kPawn, kPawn, kPawn, kKnight, kBishop, kRook, kQueen};
    TChessboardRegisterItem item;
    const int whiteKing = static_cast<int>(SplitMix(state) % 64);
    int blackKing;
    do blackKing = static_cast<int>(SplitMix(state) % 64);
    while (std::abs(whiteKing % 8 - blackKing % 8) < 2 && std::abs(whiteKing / 8 - blackKing / 8) < 2);
    item.squares[whiteKing] = MakePiece(kWhite, kKing);
    item.squares[blackKing] = MakePiece(kBlack, kKing);
    const int nPieces = 3 + static_cast<int>(SplitMix(state) % 8);
    for (int i = 0; i < nPieces;) {
        const uint64_t r = SplitMix(state);
        const int square = static_cast<int>(r % 64);
        const uint8_t type = kTypes[(r >> 8) % std::size(kTypes)];
        if (item.squares[square] != kEmpty || (type == kPawn && (square < 8 || square >= 56))) continue;
        item.squares[square] = MakePiece(i % 2 == 0 ? kWhite : kBlack, type);
        ++i;
    }
    return item;
}

// The register, its plain stream and a scratch folder, built once.
struct TBenchData {
    std::unique_ptr<TAggregatedTemporaryChessboardRegister> reg;
    std::vector<uint8_t> stream;
    std::filesystem::path folder;
};

const TBenchData& Data() {
    static const TBenchData data = [] {
        TBenchData d;
        const size_t nEntries = EntryCount();
        d.reg = std::make_unique<TAggregatedTemporaryChessboardRegister>(static_cast<uint32_t>(nEntries * 2),
                                                                         nEntries / 4);
        uint64_t state = 12345;
        for (size_t i = 0; i < nEntries; ++i)
            d.reg->Insert(static_cast<uint16_t>(1 + SplitMix(state) % 25), RandomPosition(state), i % 3 == 0);
        CRegisterStream out;
        SaveLevels(*d.reg, out, kNoByteLimit);
        d.stream = std::move(out.Bytes());
        d.folder = std::filesystem::temp_directory_path() / "moremate-bench-register-files";
        std::filesystem::create_directories(d.folder);
        return d;
    }();
    return data;
}

void BM_SaveRegisterFile(benchmark::State& state, TRegisterFileForm form) {
    const TBenchData& data = Data();
    TRegisterSaveOptions options;
    options.form = form;
    for (auto _ : state) SaveRegisterFile(data.folder / "bench.tmpReg", *data.reg, options);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.stream.size()));
    state.counters["file_MB"] = std::filesystem::file_size(data.folder / "bench.tmpReg") / 1e6;
}

void BM_LoadRegisterFile(benchmark::State& state, TRegisterFileForm form) {
    const TBenchData& data = Data();
    TRegisterSaveOptions options;
    options.form = form;
    const std::filesystem::path path = data.folder / "load.tmpReg";
    SaveRegisterFile(path, *data.reg, options);
    TRegisterLoadOptions loadOptions;
    loadOptions.workingFolder = data.folder;
    for (auto _ : state) {
        state.PauseTiming();
        auto target = std::make_unique<TAggregatedTemporaryChessboardRegister>(data.reg->Capacity(),
                                                                               data.reg->BucketCount());
        state.ResumeTiming();
        const TRegisterLoadResult result =
            LoadRegisterFile(path, *target, data.reg->BucketCount(), loadOptions);
        if (!result.bComplete) state.SkipWithError(result.sError.c_str());
        state.PauseTiming();
        target.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.stream.size()));
}

void BM_CompressContainer(benchmark::State& state, TBlockForm form) {
    const TBenchData& data = Data();
    const unsigned nThreads = static_cast<unsigned>(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(CompressContainer(form, data.stream.data(), data.stream.size(), nThreads));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.stream.size()));
}

void BM_DecodeBlock(benchmark::State& state, TBlockForm form) {
    const TBenchData& data = Data();
    const auto block = CompressBlock(form, data.stream.data(), data.stream.size());
    const char* pSequences = reinterpret_cast<const char*>(block->data() + kBlockHeaderSize);
    const size_t nSequences = block->size() - kBlockHeaderSize;
    std::vector<uint8_t> out(data.stream.size());
    for (auto _ : state) {
        const bool bDecoded =
            form == TBlockForm::Lz4
                ? LZ4_decompress_safe(pSequences, reinterpret_cast<char*>(out.data()),
                                      static_cast<int>(nSequences),
                                      static_cast<int>(out.size())) == static_cast<int>(out.size())
                : CLz4eCodec::Decompress(block->data() + kBlockHeaderSize, nSequences, out.data(),
                                         out.size());
        if (!bDecoded) state.SkipWithError("decoding failed");
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.stream.size()));
    state.counters["ratio_pct"] = 100.0 * block->size() / data.stream.size();
}

BENCHMARK_CAPTURE(BM_SaveRegisterFile, plain, TRegisterFileForm::Plain)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SaveRegisterFile, lz4_container, TRegisterFileForm::Lz4Container)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SaveRegisterFile, lz4e_container, TRegisterFileForm::Lz4eContainer)
    ->Unit(benchmark::kMillisecond);
// Real time: a load shares the records out between threads.
BENCHMARK_CAPTURE(BM_LoadRegisterFile, plain, TRegisterFileForm::Plain)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_LoadRegisterFile, lz4_container, TRegisterFileForm::Lz4Container)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CompressContainer, lz4, TBlockForm::Lz4)
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CompressContainer, lz4e, TBlockForm::Lz4e)
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DecodeBlock, lz4, TBlockForm::Lz4)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DecodeBlock, lz4e, TBlockForm::Lz4e)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace moremate
