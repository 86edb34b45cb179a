// Packed buffers of precalculated data: lookups per second and thread in each packing, packing
// and updating, and the LZW decoder against LZ4's on the same 8,192-byte blocks. The data look like an
// endgame table: long runs of 0 (no mate) with small mate counts, 16 MB of 1-byte elements.
#include <benchmark/benchmark.h>
#include <lz4.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "precalc/buffers/lzw_codec.h"
#include "precalc/buffers/packed_buffer.h"
#include "split_mix.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

constexpr size_t kElements = 16 << 20;
constexpr size_t kBlock = 8192;

const std::vector<uint8_t>& Elements() {
    static const std::vector<uint8_t> elements = [] {
        std::vector<uint8_t> bytes;
        bytes.reserve(kElements);
        uint64_t state = 2024;
        while (bytes.size() < kElements) {
            const uint64_t r = SplitMix(state);
            const size_t nRun = 1 + r % 600;
            const uint8_t nValue = r >> 16 & 1 ? 0 : static_cast<uint8_t>(1 + (r >> 20) % 30);
            for (size_t i = 0; i < nRun && bytes.size() < kElements; ++i)
                bytes.push_back(SplitMix(state) % 8 == 0 ? static_cast<uint8_t>(SplitMix(state) % 12)
                                                         : nValue);
        }
        return bytes;
    }();
    return elements;
}

CRandomAccessPackedBufferBase& Buffer(TPacking packing) {
    static const auto pLzw = PackBuffer(TPacking::Lzw, Elements(), 1, false);
    static const auto pLz4 = PackBuffer(TPacking::Lz4, Elements(), 1, false);
    return packing == TPacking::Lzw ? *pLzw : *pLz4;
}

// Lookups anywhere (nearly every one unpacks a block), or within `state.range(0)` bytes (a few
// blocks that stay in the cache).
void BM_Lookups(benchmark::State& state, TPacking packing) {
    CRandomAccessPackedBufferBase& buffer = Buffer(packing);
    const uint64_t nSpan = static_cast<uint64_t>(state.range(0));
    uint64_t random = 77 + static_cast<uint64_t>(state.thread_index());
    for (auto _ : state) benchmark::DoNotOptimize(buffer.Element(SplitMix(random) % nSpan));
    state.SetItemsProcessed(state.iterations());
    state.counters["packed_pct"] =
        benchmark::Counter(100.0 * buffer.MemoryBytes() / kElements, benchmark::Counter::kAvgThreads);
}

// Packing the first 2 MB into a read-only buffer.
void BM_Pack(benchmark::State& state, TPacking packing) {
    const std::vector<uint8_t> elements(Elements().begin(), Elements().begin() + (2 << 20));
    for (auto _ : state) benchmark::DoNotOptimize(PackBuffer(packing, elements, 1, false));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * elements.size()));
}

// Small values written at random places of an updatable buffer of 2 MB: each write unpacks its
// block (nearly always a cache miss) and packs it again.
void BM_Update(benchmark::State& state, TPacking packing) {
    const std::vector<uint8_t> elements(Elements().begin(), Elements().begin() + (2 << 20));
    const auto pBuffer = PackBuffer(packing, elements, 1, true);
    uint64_t random = 5;
    for (auto _ : state) {
        const uint64_t r = SplitMix(random);
        benchmark::DoNotOptimize(pBuffer->Update(r % elements.size(), static_cast<uint16_t>(r >> 32) % 30));
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["packed_pct"] = 100.0 * pBuffer->MemoryBytes() / elements.size();
}

// Each block packed on its own, as the buffers do.
struct TPackedBlocks {
    std::vector<std::vector<uint8_t>> blocks;
    size_t nBytes = 0;
};

const TPackedBlocks& Blocks(TPacking packing) {
    static const TLzwPreset preset(0);
    static const auto pack = [](TPacking which) {
        TPackedBlocks packed;
        for (size_t at = 0; at < kElements; at += kBlock) {
            std::vector<uint8_t> out(2 * kBlock);
            const char* pSource = reinterpret_cast<const char*>(Elements().data() + at);
            const size_t nSize =
                which == TPacking::Lzw
                    ? LzwPack(preset, Elements().data() + at, kBlock, out.data(), out.size())
                    : static_cast<size_t>(LZ4_compress_default(pSource, reinterpret_cast<char*>(out.data()),
                                                               kBlock, static_cast<int>(out.size())));
            out.resize(nSize);
            packed.nBytes += nSize;
            packed.blocks.push_back(std::move(out));
        }
        return packed;
    };
    static const TPackedBlocks lzw = pack(TPacking::Lzw);
    static const TPackedBlocks lz4 = pack(TPacking::Lz4);
    return packing == TPacking::Lzw ? lzw : lz4;
}

void BM_DecodeBlocks(benchmark::State& state, TPacking packing) {
    static const TLzwPreset preset(0);
    const TPackedBlocks& packed = Blocks(packing);
    std::vector<uint8_t> out(kBlock);
    for (auto _ : state) {
        for (const std::vector<uint8_t>& block : packed.blocks) {
            const bool bDecoded =
                packing == TPacking::Lzw
                    ? LzwUnpack(preset, block.data(), block.size(), out.data(), kBlock)
                    : LZ4_decompress_safe(reinterpret_cast<const char*>(block.data()),
                                          reinterpret_cast<char*>(out.data()), static_cast<int>(block.size()),
                                          kBlock) == static_cast<int>(kBlock);
            if (!bDecoded) state.SkipWithError("decoding failed");
            benchmark::DoNotOptimize(out.data());
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kElements));
    state.counters["packed_pct"] = 100.0 * packed.nBytes / kElements;
}

BENCHMARK_CAPTURE(BM_Lookups, lzw, TPacking::Lzw)->Arg(kElements)->Arg(4 * kBlock)->Threads(1)->Threads(2);
BENCHMARK_CAPTURE(BM_Lookups, lz4, TPacking::Lz4)->Arg(kElements)->Arg(4 * kBlock)->Threads(1)->Threads(2);
BENCHMARK_CAPTURE(BM_Pack, lzw, TPacking::Lzw)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Pack, lz4, TPacking::Lz4)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Update, lzw, TPacking::Lzw)->Iterations(2000);
BENCHMARK_CAPTURE(BM_Update, lz4, TPacking::Lz4)->Iterations(2000);
BENCHMARK_CAPTURE(BM_DecodeBlocks, lzw, TPacking::Lzw)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DecodeBlocks, lz4, TPacking::Lz4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace moremate::RandomAccessLZWBuffer
