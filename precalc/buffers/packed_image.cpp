#include "packed_image.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "core/chess_exception.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

constexpr size_t kEndAt = 0;
constexpr size_t kUnpackedSizeAt = 8;
constexpr size_t kBlockSizeAt = 16;
constexpr size_t kFillAt = 20;
constexpr size_t kReservedAt = 21;
constexpr size_t kOffsetSize = 8;

[[noreturn]] void Damaged(const std::string& what) {
    throw ChessException("Damaged packed data: " + what);
}

uint32_t ReadU32(const uint8_t* p) {
    return p[0] | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}

void CheckHeaderPresent(const std::vector<uint8_t>& image) {
    if (image.size() < kImageHeaderSize)
        Damaged("the image has " + std::to_string(image.size()) + " bytes, fewer than its header");
}

void CheckHeader(const std::vector<uint8_t>& image, const TImageHeader& header, unsigned nElementSize) {
    if (header.nBlockSize == 0 || header.nBlockSize % nElementSize != 0)
        Damaged("block size " + std::to_string(header.nBlockSize) + " does not hold whole elements");
    if (header.nUnpackedSize % nElementSize != 0)
        Damaged("unpacked size " + std::to_string(header.nUnpackedSize) +
                " is not a multiple of the element size " + std::to_string(nElementSize));
    if (std::any_of(image.begin() + kReservedAt, image.begin() + kImageHeaderSize,
                    [](uint8_t b) { return b != 0; }))
        Damaged("reserved header bytes are not 0");
    const uint64_t nBlocks = BlockCount(header.nUnpackedSize, header.nBlockSize);
    if (nBlocks > (image.size() - kImageHeaderSize) / kOffsetSize)
        Damaged("the offset table of " + std::to_string(nBlocks) + " blocks does not fit in " +
                std::to_string(image.size()) + " bytes");
    if (header.nEnd < TableEnd(nBlocks) || header.nEnd > image.size())
        Damaged("end of used data " + std::to_string(header.nEnd) + " lies outside " +
                std::to_string(TableEnd(nBlocks)) + ".." + std::to_string(image.size()));
}

// Each block's room: up to the next block start above it, or the end of used data.
void MeasureRooms(std::vector<TBlockPlacement>& placements, uint64_t nEnd) {
    std::vector<size_t> order(placements.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return placements[a].nOffset < placements[b].nOffset; });
    for (size_t i = 0; i < order.size(); ++i) {
        TBlockPlacement& placement = placements[order[i]];
        const uint64_t nNext = i + 1 < order.size() ? placements[order[i + 1]].nOffset : nEnd;
        if (nNext == placement.nOffset)
            Damaged("blocks " + std::to_string(order[i]) + " and " + std::to_string(order[i + 1]) +
                    " start at the same offset " + std::to_string(nNext));
        placement.nRoom = nNext - placement.nOffset;
    }
}

}  // namespace

uint64_t ReadU64(const uint8_t* p) {
    uint64_t nValue = 0;
    for (int i = 7; i >= 0; --i) nValue = nValue << 8 | p[i];
    return nValue;
}

void WriteU64(uint8_t* p, uint64_t nValue) {
    for (int i = 0; i < 8; ++i) p[i] = static_cast<uint8_t>(nValue >> (8 * i));
}

uint64_t BlockCount(uint64_t nUnpackedSize, uint32_t nBlockSize) {
    return nUnpackedSize / nBlockSize + (nUnpackedSize % nBlockSize != 0);
}

uint64_t TableEnd(uint64_t nBlocks) {
    return kImageHeaderSize + kOffsetSize * nBlocks;
}

TImageHeader ReadImageHeader(const std::vector<uint8_t>& image) {
    return {ReadU64(&image[kEndAt]), ReadU64(&image[kUnpackedSizeAt]), ReadU32(&image[kBlockSizeAt]),
            image[kFillAt]};
}

uint32_t BlockSizeOf(const std::vector<uint8_t>& image) {
    CheckHeaderPresent(image);
    return ReadU32(&image[kBlockSizeAt]);
}

void WriteImageHeader(std::vector<uint8_t>& image, const TImageHeader& header) {
    std::fill_n(image.begin(), kImageHeaderSize, uint8_t{0});
    WriteU64(&image[kEndAt], header.nEnd);
    WriteU64(&image[kUnpackedSizeAt], header.nUnpackedSize);
    for (int i = 0; i < 4; ++i) image[kBlockSizeAt + i] = static_cast<uint8_t>(header.nBlockSize >> (8 * i));
    image[kFillAt] = header.nFill;
}

void WriteBlockOffset(std::vector<uint8_t>& image, uint64_t nBlock, const TBlockPlacement& placement) {
    WriteU64(&image[TableEnd(nBlock)], placement.nOffset | (placement.bKeptAsItIs ? kKeptAsItIs : 0));
}

std::vector<TBlockPlacement> CheckedPlacements(const std::vector<uint8_t>& image, unsigned nElementSize) {
    CheckHeaderPresent(image);
    const TImageHeader header = ReadImageHeader(image);
    CheckHeader(image, header, nElementSize);
    const uint64_t nBlocks = BlockCount(header.nUnpackedSize, header.nBlockSize);
    std::vector<TBlockPlacement> placements(nBlocks);
    for (uint64_t b = 0; b < nBlocks; ++b) {
        const uint64_t nEntry = ReadU64(&image[TableEnd(b)]);
        const uint64_t nOffset = nEntry & ~kKeptAsItIs;
        if (nOffset < TableEnd(nBlocks) || nOffset >= header.nEnd)
            Damaged("block " + std::to_string(b) + " starts at " + std::to_string(nOffset) +
                    ", outside the used data");
        placements[b] = {nOffset, 0, (nEntry & kKeptAsItIs) != 0};
    }
    MeasureRooms(placements, header.nEnd);
    for (uint64_t b = 0; b < nBlocks; ++b) {
        const uint64_t nBytes =
            std::min<uint64_t>(header.nBlockSize, header.nUnpackedSize - b * header.nBlockSize);
        if (placements[b].bKeptAsItIs && placements[b].nRoom < nBytes)
            Damaged("block " + std::to_string(b) + " kept as it is has " +
                    std::to_string(placements[b].nRoom) + " bytes of room for its " + std::to_string(nBytes) +
                    " bytes");
    }
    return placements;
}

}  // namespace moremate::RandomAccessLZWBuffer
