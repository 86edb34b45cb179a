// The packed forms of register data, recognised by their first four bytes:
//
//   "LZ4 "  one block in LZ4's block format         "lz4 "  a container of "LZ4 " blocks
//   "LZ4e"  one block in the extended format         "lz4e"  a container of "LZ4e" blocks
//           (lz4e_codec.h)
//
// A block: the magic, u32 uncompressed size, u32 size of the block with its header, u32 0, then
// the sequences (16 bytes of header). A container: the magic, u32 total uncompressed size, u32 0,
// u32 number of blocks, 16 bytes 0, then the blocks back to back; their outputs, concatenated in
// order, are the data. All numbers little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace moremate {

enum class TBlockForm { Lz4, Lz4e };

inline constexpr size_t kPackedMagicSize = 4;
inline constexpr size_t kBlockHeaderSize = 16;
inline constexpr size_t kContainerHeaderSize = 32;

// Whether the first four bytes of a file name one of the packed forms.
bool IsPackedMagic(const uint8_t* pFirstFour);

// One block with its header; none when the data are too large for the form.
std::optional<std::vector<uint8_t>> CompressBlock(TBlockForm form, const uint8_t* pData, size_t size);

// What compressing one part of a container gave, for the compression log.
struct TBlockReport {
    size_t nPacked = 0;  // block size with its header
    size_t nOriginal = 0;
};

// Splits the data into `nThreads` parts (at least 1) of a size rounded up to a multiple of 16,
// the last taking the rest, and compresses each in a thread of its own into a container. None
// for data of 4 GiB and more, or when a part fails. `pReports`, when given, receives one report
// per block in order.
std::optional<std::vector<uint8_t>> CompressContainer(TBlockForm form, const uint8_t* pData, size_t size,
                                                      unsigned nThreads,
                                                      std::vector<TBlockReport>* pReports = nullptr);

// Decodes any of the four forms; none for anything malformed, truncated or of another form.
std::optional<std::vector<uint8_t>> DecompressPacked(const uint8_t* pData, size_t size);

// "Compressed bucket 0. Packed ... of ... (..%). Compression ratio ..%": the packed size as a
// share of the original, then the room saved.
std::string CompressionLogLine(size_t nBlock, const TBlockReport& report);

}  // namespace moremate
