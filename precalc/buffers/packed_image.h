// The packed image of a buffer, one contiguous allocation, all numbers little-endian:
//
//   0   u64   end of used data (from the image start)
//   8   u64   unpacked size in bytes
//   16  u32   block size
//   20  u8    fill byte of the LZW preset (0 for LZ4)
//   21  11 bytes reserved, 0
//   32  u64 × block count: where each packed block starts; the top bit marks a block kept as it
//       is, because packing would not have made it shorter
//   ... the blocks
//
// Block count = unpacked size / block size rounded up; the last block holds the remainder. A
// block's room runs up to the next block start above it (or the end of used data): an updatable
// buffer leaves room behind its blocks for repacking, and a block repacked into more than its
// room moves to the end. Bytes after the end of used data are spare room for such moves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace moremate::RandomAccessLZWBuffer {

inline constexpr size_t kImageHeaderSize = 32;
inline constexpr uint64_t kKeptAsItIs = uint64_t{1} << 63;

struct TImageHeader {
    uint64_t nEnd = 0;
    uint64_t nUnpackedSize = 0;
    uint32_t nBlockSize = 0;
    uint8_t nFill = 0;
};

struct TBlockPlacement {
    uint64_t nOffset = 0;
    uint64_t nRoom = 0;
    bool bKeptAsItIs = false;
};

uint64_t ReadU64(const uint8_t* p);
void WriteU64(uint8_t* p, uint64_t nValue);

uint64_t BlockCount(uint64_t nUnpackedSize, uint32_t nBlockSize);
// The offset table's end: where the first block may start.
uint64_t TableEnd(uint64_t nBlocks);

// Reads the header of an image of at least kImageHeaderSize bytes.
TImageHeader ReadImageHeader(const std::vector<uint8_t>& image);
// Writes the header into the first kImageHeaderSize bytes (reserved bytes 0).
// The block size of an image; throws ChessException when the image is shorter than a header.
uint32_t BlockSizeOf(const std::vector<uint8_t>& image);
void WriteImageHeader(std::vector<uint8_t>& image, const TImageHeader& header);
void WriteBlockOffset(std::vector<uint8_t>& image, uint64_t nBlock, const TBlockPlacement& placement);

// Checks everything a reader relies on (header, sizes, the offset table, every block inside the
// used data, no two blocks at one place, room for blocks kept as they are) and gives each block's
// place and room. Throws ChessException "Damaged packed data: ..." saying what is wrong.
std::vector<TBlockPlacement> CheckedPlacements(const std::vector<uint8_t>& image, unsigned nElementSize);

}  // namespace moremate::RandomAccessLZWBuffer
