// How the blocks of a buffer are packed: the LZW variant or LZ4 block sequences. A codec is made
// once per buffer (the LZW one holds the preset for the buffer's fill byte) and is used by many
// threads at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "packed_buffer.h"

namespace moremate::RandomAccessLZWBuffer {

class CBlockCodec {
  public:
    virtual ~CBlockCodec() = default;
    // Packs `nSize` bytes into at most `nRoom` bytes; the bytes used, 0 when they do not fit.
    virtual size_t Pack(const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom) const = 0;
    // Unpacks exactly `nSize` bytes from a block lying in `nPacked` bytes (its room, which may be
    // more than it uses); false for damaged data. Never touches memory outside either side.
    virtual bool Unpack(const uint8_t* pPacked, size_t nPacked, uint8_t* pOut, size_t nSize) const = 0;
};

std::unique_ptr<CBlockCodec> MakeBlockCodec(TPacking packing, uint8_t nFill);

// "LZW" or "LZ4", for messages.
std::string PackingName(TPacking packing);

// The byte value met most often (the smallest of equals; 0 for no data): the LZW preset's fill.
uint8_t MostFrequentByte(const std::vector<uint8_t>& bytes);

}  // namespace moremate::RandomAccessLZWBuffer
