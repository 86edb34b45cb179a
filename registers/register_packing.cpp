#include "register_packing.h"

#include <lz4.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <exception>
#include <thread>

#include "core/thread_start.h"
#include "lz4e_codec.h"

namespace moremate {
namespace {

constexpr char kLz4Magic[] = "LZ4 ";
constexpr char kLz4eMagic[] = "LZ4e";
constexpr char kLz4ContainerMagic[] = "lz4 ";
constexpr char kLz4eContainerMagic[] = "lz4e";
constexpr uint64_t kMaxPackedSize = 0xFFFFFFFFull;
constexpr size_t kPartAlignment = 16;
// Neither format gets more than 255 bytes out of one byte of sequences (a length extension byte),
// so a size field claiming more is refused before any memory is taken for it.
constexpr uint64_t kMaxExpansion = 255;

uint32_t ReadU32(const uint8_t* p) {
    return p[0] | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}
void WriteU32(uint8_t* p, uint64_t value) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(value >> (8 * i));
}
bool HasMagic(const uint8_t* p, const char* magic) {
    return std::memcmp(p, magic, kPackedMagicSize) == 0;
}

std::optional<std::vector<uint8_t>> Lz4Sequences(const uint8_t* pData, size_t size) {
    if (size > LZ4_MAX_INPUT_SIZE) return std::nullopt;
    const int nInput = static_cast<int>(size);
    std::vector<uint8_t> out(kBlockHeaderSize + static_cast<size_t>(LZ4_compressBound(nInput)));
    const int nPacked = LZ4_compress_default(reinterpret_cast<const char*>(pData),
                                             reinterpret_cast<char*>(out.data() + kBlockHeaderSize), nInput,
                                             LZ4_compressBound(nInput));
    if (nPacked <= 0) return std::nullopt;
    out.resize(kBlockHeaderSize + static_cast<size_t>(nPacked));
    return out;
}

std::optional<std::vector<uint8_t>> Lz4eSequences(const uint8_t* pData, size_t size) {
    std::vector<uint8_t> out(kBlockHeaderSize);
    out.reserve(kBlockHeaderSize + size / 2);
    CLz4eCodec::Compress(pData, size, out);
    return out;
}

// Decodes the block at the start of `pData` into `pOut` (room `nRoom`); returns the sizes it
// read and wrote, none when the block is bad.
struct TBlockExtent {
    size_t nRead;
    size_t nWritten;
};
std::optional<TBlockExtent> DecodeBlock(const uint8_t* pData, size_t size, uint8_t* pOut, size_t nRoom) {
    if (size < kBlockHeaderSize) return std::nullopt;
    const size_t nOriginal = ReadU32(pData + 4);
    const size_t nBlock = ReadU32(pData + 8);
    if (nBlock < kBlockHeaderSize || nBlock > size || nOriginal > nRoom) return std::nullopt;
    const uint8_t* pSequences = pData + kBlockHeaderSize;
    const size_t nSequences = nBlock - kBlockHeaderSize;
    if (HasMagic(pData, kLz4eMagic)) {
        if (!CLz4eCodec::Decompress(pSequences, nSequences, pOut, nOriginal)) return std::nullopt;
    } else if (HasMagic(pData, kLz4Magic)) {
        if (nOriginal > INT_MAX || nSequences > INT_MAX) return std::nullopt;
        const int nDecoded =
            LZ4_decompress_safe(reinterpret_cast<const char*>(pSequences), reinterpret_cast<char*>(pOut),
                                static_cast<int>(nSequences), static_cast<int>(nOriginal));
        if (nDecoded < 0 || static_cast<size_t>(nDecoded) != nOriginal) return std::nullopt;
    } else {
        return std::nullopt;
    }
    return TBlockExtent{nBlock, nOriginal};
}

// Parts of ceil(size / t) bytes rounded up to a multiple of 16, the last taking the rest; one
// part for no data.
std::vector<TBlockReport> SplitIntoParts(size_t size, size_t nThreads) {
    size_t nPart = (size + nThreads - 1) / nThreads;
    nPart = std::max(kPartAlignment, (nPart + kPartAlignment - 1) / kPartAlignment * kPartAlignment);
    std::vector<TBlockReport> parts;
    for (size_t nOffset = 0; nOffset < size || parts.empty(); nOffset += nPart)
        parts.push_back({0, std::min(nPart, size - nOffset)});
    return parts;
}

bool PlausibleSize(uint64_t nOriginal, size_t nPacked) {
    return nOriginal <= kMaxExpansion * nPacked;
}

std::optional<std::vector<uint8_t>> DecodeSingle(const uint8_t* pData, size_t size) {
    if (size < kBlockHeaderSize || !PlausibleSize(ReadU32(pData + 4), size)) return std::nullopt;
    std::vector<uint8_t> out(ReadU32(pData + 4));
    if (!DecodeBlock(pData, size, out.data(), out.size())) return std::nullopt;
    return out;
}

std::optional<std::vector<uint8_t>> DecodeContainer(const uint8_t* pData, size_t size) {
    if (size < kContainerHeaderSize || !PlausibleSize(ReadU32(pData + 4), size)) return std::nullopt;
    std::vector<uint8_t> out(ReadU32(pData + 4));
    const uint32_t nBlocks = ReadU32(pData + 12);
    size_t nRead = kContainerHeaderSize;
    size_t nWritten = 0;
    for (uint32_t i = 0; i < nBlocks; ++i) {
        const auto extent =
            DecodeBlock(pData + nRead, size - nRead, out.data() + nWritten, out.size() - nWritten);
        if (!extent) return std::nullopt;
        nRead += extent->nRead;
        nWritten += extent->nWritten;
    }
    if (nWritten != out.size()) return std::nullopt;
    return out;
}

}  // namespace

bool IsPackedMagic(const uint8_t* pFirstFour) {
    for (const char* magic : {kLz4Magic, kLz4eMagic, kLz4ContainerMagic, kLz4eContainerMagic}) {
        if (HasMagic(pFirstFour, magic)) return true;
    }
    return false;
}

std::optional<std::vector<uint8_t>> CompressBlock(TBlockForm form, const uint8_t* pData, size_t size) {
    if (size > kMaxPackedSize) return std::nullopt;
    auto block = form == TBlockForm::Lz4 ? Lz4Sequences(pData, size) : Lz4eSequences(pData, size);
    if (!block || block->size() > kMaxPackedSize) return std::nullopt;
    std::memcpy(block->data(), form == TBlockForm::Lz4 ? kLz4Magic : kLz4eMagic, kPackedMagicSize);
    WriteU32(block->data() + 4, size);
    WriteU32(block->data() + 8, block->size());
    WriteU32(block->data() + 12, 0);
    return block;
}

std::optional<std::vector<uint8_t>> CompressContainer(TBlockForm form, const uint8_t* pData, size_t size,
                                                      unsigned nThreads,
                                                      std::vector<TBlockReport>* pReports) {
    if (size > kMaxPackedSize) return std::nullopt;
    const std::vector<TBlockReport> parts = SplitIntoParts(size, nThreads == 0 ? 1 : nThreads);
    std::vector<std::optional<std::vector<uint8_t>>> blocks(parts.size());
    std::vector<std::thread> threads;
    threads.reserve(parts.size());
    for (size_t i = 0, nOffset = 0; i < parts.size(); nOffset += parts[i++].nOriginal) {
        threads.push_back(
            StartThread([&block = blocks[i], form, p = pData + nOffset, nSize = parts[i].nOriginal] {
                try {
                    block = CompressBlock(form, p, nSize);
                } catch (const std::exception&) {
                    block.reset();  // out of memory: the container fails
                }
            }));
    }
    for (std::thread& thread : threads) thread.join();

    uint64_t nTotal = kContainerHeaderSize;
    for (const auto& block : blocks) {
        if (!block || block->empty()) return std::nullopt;
        nTotal += block->size();
    }
    if (nTotal > kMaxPackedSize) return std::nullopt;

    std::vector<uint8_t> out(kContainerHeaderSize, 0);
    std::memcpy(out.data(), form == TBlockForm::Lz4 ? kLz4ContainerMagic : kLz4eContainerMagic,
                kPackedMagicSize);
    WriteU32(out.data() + 4, size);
    WriteU32(out.data() + 12, parts.size());
    out.reserve(nTotal);
    for (size_t i = 0; i < parts.size(); ++i) {
        out.insert(out.end(), blocks[i]->begin(), blocks[i]->end());
        if (pReports) pReports->push_back({blocks[i]->size(), parts[i].nOriginal});
    }
    return out;
}

std::optional<std::vector<uint8_t>> DecompressPacked(const uint8_t* pData, size_t size) {
    if (size < kPackedMagicSize) return std::nullopt;
    if (HasMagic(pData, kLz4ContainerMagic) || HasMagic(pData, kLz4eContainerMagic))
        return DecodeContainer(pData, size);
    return DecodeSingle(pData, size);
}

std::string CompressionLogLine(size_t nBlock, const TBlockReport& report) {
    const double original = report.nOriginal == 0 ? 1.0 : static_cast<double>(report.nOriginal);
    const unsigned long long nShare = static_cast<unsigned long long>(100.0 * report.nPacked / original);
    char line[160];
    std::snprintf(
        line, sizeof line, "Compressed bucket %zd. Packed %llu of %llu (%llu%%). Compression ratio %0.1f%%\n",
        static_cast<ptrdiff_t>(nBlock), static_cast<unsigned long long>(report.nPacked),
        static_cast<unsigned long long>(report.nOriginal), nShare, 100.0 - 100.0 * report.nPacked / original);
    return line;
}

}  // namespace moremate
