// The buffer behind both packings: the packed image (packed_image.h), a codec for its blocks
// (block_codec.h) and a cache of unpacked blocks (block_cache.h). The class templates of
// random_access_buffer.h fix its shape.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "block_cache.h"
#include "block_codec.h"
#include "packed_buffer.h"
#include "packed_image.h"

namespace moremate::RandomAccessLZWBuffer {

struct TBufferShape {
    TPacking packing = TPacking::Lzw;
    unsigned nElementSize = 1;
    uint32_t nBlockSize = 0;
    bool bUpdatable = false;
    size_t nMinBlockRoom = 0;     // bytes each block of an updatable buffer keeps for repacking
    size_t nSpareBlocks = 0;      // room for this many moved blocks after the used data
    bool bKeepBuildRoom = false;  // keep the allocation grown while building instead of shrinking it
};

class CPackedBlockBuffer : public CRandomAccessPackedBufferBase {
  public:
    // The image of `elements` (ElementCount × element size bytes) packed in `shape`.
    static std::vector<uint8_t> PackImage(const TBufferShape& shape, const std::vector<uint8_t>& elements);

    uint64_t ElementCount() const override { return m_header.nUnpackedSize / m_shape.nElementSize; }
    unsigned ElementSize() const override { return m_shape.nElementSize; }
    uint16_t Element(uint64_t nIndex) override;
    bool Update(uint64_t nIndex, uint16_t nValue) override;
    size_t MemoryBytes() const override { return m_image.capacity(); }
    const std::vector<uint8_t>& Image() const override { return m_image; }
    std::optional<std::vector<uint8_t>> Unpack(CReporter* pReporter, int languageId) override;

  protected:
    // Takes an image of this shape; throws ChessException when it is damaged.
    CPackedBlockBuffer(const TBufferShape& shape, std::vector<uint8_t> image);

  private:
    size_t BlockBytes(uint64_t nBlock) const;
    // Where element `nIndex` lies; throws for an index beyond the buffer.
    uint64_t BlockOf(uint64_t nIndex) const;
    // Throws ChessException "Error unpacking ... data" for a damaged block.
    void UnpackBlock(uint64_t nBlock, uint8_t* pOut) const;
    // Repacks a block: in its room when it fits, else in a room another block has left, or
    // behind the used data (in the spare room when there is enough). Throws bad_alloc.
    void Repack(uint64_t nBlock, const uint8_t* pBytes);
    TBlockPlacement TakeRoom(uint64_t nRoom);
    uint16_t LoadElement(const uint8_t* p) const;
    void StoreElement(uint8_t* p, uint16_t nValue) const;

    const TBufferShape m_shape;
    std::vector<uint8_t> m_image;
    std::vector<TBlockPlacement> m_placements;
    TImageHeader m_header;
    std::unique_ptr<CBlockCodec> m_pCodec;
    CBlockCache m_cache;
    // For repacking, under every lock of the cache: a block's unpacked bytes, and the rooms that
    // moved blocks have left (found again when the image is opened: as room of the blocks before).
    std::vector<uint8_t> m_scratch;
    std::vector<TBlockPlacement> m_freeRooms;
};

}  // namespace moremate::RandomAccessLZWBuffer
