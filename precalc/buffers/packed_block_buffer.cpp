#include "packed_block_buffer.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "core/chess_exception.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

struct TPackedBlock {
    size_t nSize = 0;
    bool bKeptAsItIs = false;
};

// Packs `nSize` bytes into `pScratch` (room for `nSize`); a block that would not get shorter is
// kept as it is.
TPackedBlock PackBlock(const CBlockCodec& codec, const uint8_t* pBytes, size_t nSize, uint8_t* pScratch) {
    const size_t nPacked = codec.Pack(pBytes, nSize, pScratch, nSize - 1);
    if (nPacked != 0) return {nPacked, false};
    std::memcpy(pScratch, pBytes, nSize);
    return {nSize, true};
}

// The room of a packed block: what it takes; in an updatable buffer a quarter more (up to a whole
// block), so that a block does not move at every change, and at least the minimum room.
uint64_t RoomFor(const TBufferShape& shape, size_t nPacked) {
    if (!shape.bUpdatable) return nPacked;
    return std::max(std::min(nPacked + nPacked / 4, size_t{shape.nBlockSize}), shape.nMinBlockRoom);
}

std::string BufferClassName(TPacking packing) {
    return packing == TPacking::Lz4 ? "CRandomAccessLz4Buffer" : "CRandomAccessLZWBuffer";
}

// The header of an image already checked, when its blocks are of the shape's size.
TImageHeader HeaderOfShape(const TBufferShape& shape, const std::vector<uint8_t>& image) {
    const TImageHeader header = ReadImageHeader(image);
    if (header.nBlockSize != shape.nBlockSize)
        throw ChessException("Packed data in blocks of " + std::to_string(header.nBlockSize) +
                             " bytes opened as " + std::to_string(shape.nBlockSize) + "-byte blocks");
    return header;
}

}  // namespace

std::vector<uint8_t> CPackedBlockBuffer::PackImage(const TBufferShape& shape,
                                                   const std::vector<uint8_t>& elements) {
    if (elements.size() % shape.nElementSize != 0)
        throw ChessException(std::to_string(elements.size()) + " bytes do not make whole " +
                             std::to_string(shape.nElementSize) + "-byte elements");
    const uint8_t nFill = shape.packing == TPacking::Lzw ? MostFrequentByte(elements) : 0;
    TImageHeader header{0, elements.size(), shape.nBlockSize, nFill};
    const std::unique_ptr<CBlockCodec> pCodec = MakeBlockCodec(shape.packing, nFill);
    const uint64_t nBlocks = BlockCount(header.nUnpackedSize, header.nBlockSize);
    std::vector<uint8_t> image(TableEnd(nBlocks));
    std::vector<uint8_t> scratch(shape.nBlockSize);
    for (uint64_t b = 0; b < nBlocks; ++b) {
        const size_t nFirst = b * shape.nBlockSize;
        const size_t nBytes = std::min<size_t>(shape.nBlockSize, elements.size() - nFirst);
        const TPackedBlock packed = PackBlock(*pCodec, elements.data() + nFirst, nBytes, scratch.data());
        const TBlockPlacement placement{image.size(), RoomFor(shape, packed.nSize), packed.bKeptAsItIs};
        image.insert(image.end(), scratch.begin(), scratch.begin() + static_cast<ptrdiff_t>(packed.nSize));
        image.resize(placement.nOffset + placement.nRoom);
        WriteBlockOffset(image, b, placement);
    }
    header.nEnd = image.size();
    image.resize(image.size() + shape.nSpareBlocks * RoomFor(shape, shape.nBlockSize));
    WriteImageHeader(image, header);
    if (!shape.bKeepBuildRoom) image.shrink_to_fit();
    return image;
}

CPackedBlockBuffer::CPackedBlockBuffer(const TBufferShape& shape, std::vector<uint8_t> image)
    : m_shape(shape),
      m_image(std::move(image)),
      m_placements(CheckedPlacements(m_image, shape.nElementSize)),
      m_header(HeaderOfShape(shape, m_image)),
      m_pCodec(MakeBlockCodec(shape.packing, m_header.nFill)),
      m_cache(shape.nBlockSize) {}

size_t CPackedBlockBuffer::BlockBytes(uint64_t nBlock) const {
    return std::min<uint64_t>(m_shape.nBlockSize, m_header.nUnpackedSize - nBlock * m_shape.nBlockSize);
}

uint64_t CPackedBlockBuffer::BlockOf(uint64_t nIndex) const {
    if (nIndex >= ElementCount())
        throw ChessException("Element " + std::to_string(nIndex) + " lies beyond the " +
                             std::to_string(ElementCount()) + " elements of a packed buffer");
    return nIndex * m_shape.nElementSize / m_shape.nBlockSize;
}

void CPackedBlockBuffer::UnpackBlock(uint64_t nBlock, uint8_t* pOut) const {
    const TBlockPlacement& placement = m_placements[nBlock];
    const uint8_t* const pPacked = m_image.data() + placement.nOffset;
    const size_t nBytes = BlockBytes(nBlock);
    if (placement.bKeptAsItIs) {
        std::memcpy(pOut, pPacked, nBytes);  // its room was checked to hold it
        return;
    }
    if (!m_pCodec->Unpack(pPacked, placement.nRoom, pOut, nBytes))
        throw ChessException("Error unpacking " + PackingName(m_shape.packing) + " data");
}

uint16_t CPackedBlockBuffer::Element(uint64_t nIndex) {
    const uint64_t nBlock = BlockOf(nIndex);
    const size_t nAt = nIndex * m_shape.nElementSize % m_shape.nBlockSize;
    std::lock_guard lock(m_cache.MutexOf(nBlock));
    const uint8_t* const p =
        m_cache.SlotFor(nBlock, [&](uint8_t* pSlot) { UnpackBlock(nBlock, pSlot); }) + nAt;
    return LoadElement(p);
}

bool CPackedBlockBuffer::Update(uint64_t nIndex, uint16_t nValue) {
    if (!m_shape.bUpdatable)
        throw ChessException("Call to Update for non-update'able instance of " +
                             BufferClassName(m_shape.packing) + ".");
    if (m_shape.nElementSize == 1 && nValue > 0xFF)
        throw ChessException("Value " + std::to_string(nValue) + " does not fit in a 1-byte element");
    const uint64_t nBlock = BlockOf(nIndex);
    const auto locks = m_cache.LockAll();
    uint8_t* const pBlock = m_cache.SlotFor(nBlock, [&](uint8_t* pSlot) { UnpackBlock(nBlock, pSlot); });
    uint8_t* const p = pBlock + nIndex * m_shape.nElementSize % m_shape.nBlockSize;
    const uint16_t nPrevious = LoadElement(p);
    if (nPrevious == nValue) return true;
    StoreElement(p, nValue);
    try {
        Repack(nBlock, pBlock);
    } catch (const std::bad_alloc&) {
        StoreElement(p, nPrevious);  // the cached block stays what the image holds
        return false;
    }
    return true;
}

void CPackedBlockBuffer::Repack(uint64_t nBlock, const uint8_t* pBytes) {
    m_scratch.resize(m_shape.nBlockSize);
    const TPackedBlock packed = PackBlock(*m_pCodec, pBytes, BlockBytes(nBlock), m_scratch.data());
    TBlockPlacement& placement = m_placements[nBlock];
    if (packed.nSize > placement.nRoom) {
        // The room it leaves can take a smaller block.
        const TBlockPlacement moved = TakeRoom(RoomFor(m_shape, packed.nSize));
        m_freeRooms.push_back(placement);
        placement = moved;
    }
    placement.bKeptAsItIs = packed.bKeptAsItIs;
    std::memcpy(m_image.data() + placement.nOffset, m_scratch.data(), packed.nSize);
    WriteBlockOffset(m_image, nBlock, placement);
}

TBlockPlacement CPackedBlockBuffer::TakeRoom(uint64_t nRoom) {
    const auto free = std::find_if(m_freeRooms.begin(), m_freeRooms.end(),
                                   [nRoom](const TBlockPlacement& room) { return room.nRoom >= nRoom; });
    if (free != m_freeRooms.end()) {
        const TBlockPlacement room = *free;
        *free = m_freeRooms.back();
        m_freeRooms.pop_back();
        return room;
    }
    const uint64_t nNeeded = m_header.nEnd + nRoom;
    if (nNeeded > m_image.size()) {
        // Grows by an eighth rather than doubling: the image is counted against a memory quota.
        if (nNeeded > m_image.capacity()) m_image.reserve(nNeeded + nNeeded / 8);
        m_image.resize(nNeeded);
    }
    const TBlockPlacement room{m_header.nEnd, nRoom, false};
    m_header.nEnd = nNeeded;
    WriteImageHeader(m_image, m_header);
    return room;
}

std::optional<std::vector<uint8_t>> CPackedBlockBuffer::Unpack(CReporter* pReporter, int languageId) {
    std::vector<uint8_t> bytes(m_header.nUnpackedSize);
    for (uint64_t b = 0; b < m_placements.size(); ++b) {
        std::lock_guard lock(m_cache.MutexOf(b));
        try {
            UnpackBlock(b, bytes.data() + b * m_shape.nBlockSize);
        } catch (const ChessException& e) {
            if (pReporter) pReporter->Report(ReportTitle(ReportKind::Error, languageId), e.what());
            return std::nullopt;
        }
    }
    return bytes;
}

uint16_t CPackedBlockBuffer::LoadElement(const uint8_t* p) const {
    return m_shape.nElementSize == 1 ? p[0] : static_cast<uint16_t>(p[0] | p[1] << 8);
}

void CPackedBlockBuffer::StoreElement(uint8_t* p, uint16_t nValue) const {
    p[0] = static_cast<uint8_t>(nValue);
    if (m_shape.nElementSize == 2) p[1] = static_cast<uint8_t>(nValue >> 8);
}

}  // namespace moremate::RandomAccessLZWBuffer
