// The packed buffers as class templates over their shape:
//
//   CRandomAccessLZWBuffer<element, block size, spare blocks, room divisor, updatable,
//                          keep building room>
//
// and CRandomAccessLz4Buffer with the same arguments. "Spare blocks" adds room for that many moved
// blocks after the used data; each block of an updatable buffer keeps at least the block size
// divided by the room divisor for repacking in place; "keep building room" leaves the allocation
// grown while packing as it is instead of shrinking it to the image. Instances with 0 for
// "updatable" refuse Update.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "lz4_block.h"
#include "packed_block_buffer.h"

namespace moremate::RandomAccessLZWBuffer {

template <TPacking kPacking, typename TElement, uint32_t kBlockSize, int kSpareBlocks, int kRoomDivisor,
          int kUpdatable, int kKeepBuildRoom>
class CRandomAccessBlockBuffer final : public CPackedBlockBuffer {
    static_assert(sizeof(TElement) == 1 || sizeof(TElement) == 2);
    static_assert(kBlockSize % sizeof(TElement) == 0 && kBlockSize >= 2);
    static_assert(kSpareBlocks >= 0 && kRoomDivisor >= 1);
    static_assert(kPacking != TPacking::Lz4 || kBlockSize <= kLz4MaxBlock);

  public:
    static constexpr TBufferShape kShape{kPacking,
                                         sizeof(TElement),
                                         kBlockSize,
                                         kUpdatable != 0,
                                         size_t{kBlockSize} / kRoomDivisor,
                                         size_t{kSpareBlocks},
                                         kKeepBuildRoom != 0};

    static std::unique_ptr<CRandomAccessBlockBuffer> Pack(const std::vector<uint8_t>& elements) {
        return Open(PackImage(kShape, elements));
    }
    // Throws ChessException for a damaged image or one with other blocks.
    static std::unique_ptr<CRandomAccessBlockBuffer> Open(std::vector<uint8_t> image) {
        return std::unique_ptr<CRandomAccessBlockBuffer>(new CRandomAccessBlockBuffer(std::move(image)));
    }

  private:
    explicit CRandomAccessBlockBuffer(std::vector<uint8_t> image)
        : CPackedBlockBuffer(kShape, std::move(image)) {}
};

template <typename TElement, uint32_t kBlockSize, int kSpareBlocks, int kRoomDivisor, int kUpdatable,
          int kKeepBuildRoom>
using CRandomAccessLZWBuffer = CRandomAccessBlockBuffer<TPacking::Lzw, TElement, kBlockSize, kSpareBlocks,
                                                        kRoomDivisor, kUpdatable, kKeepBuildRoom>;
template <typename TElement, uint32_t kBlockSize, int kSpareBlocks, int kRoomDivisor, int kUpdatable,
          int kKeepBuildRoom>
using CRandomAccessLz4Buffer = CRandomAccessBlockBuffer<TPacking::Lz4, TElement, kBlockSize, kSpareBlocks,
                                                        kRoomDivisor, kUpdatable, kKeepBuildRoom>;

}  // namespace moremate::RandomAccessLZWBuffer
