// A long array of small elements (bytes or 16-bit words) kept compressed in memory, cut into
// blocks packed one by one, so that one element is read by unpacking only its block. Two packings
// share this interface: the LZW variant and LZ4 block sequences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace moremate::RandomAccessLZWBuffer {

class CRandomAccessPackedBufferBase {
  public:
    virtual ~CRandomAccessPackedBufferBase() = default;

    virtual uint64_t ElementCount() const = 0;
    // 1 or 2 bytes.
    virtual unsigned ElementSize() const = 0;
    // Safe from every search thread at once.
    virtual uint16_t Element(uint64_t nIndex) = 0;
    // Stores one element, repacking its block in place. False when the block no longer fits in
    // its room and no memory is left; throws for a buffer that cannot be updated.
    virtual bool Update(uint64_t nIndex, uint16_t nValue) = 0;
    // The packed image's bytes in memory, as counted against the quota of precalculated data.
    virtual size_t MemoryBytes() const = 0;
    // The packed image as written to and read from a ".packed.lzw" or ".packed.lz4" file.
    virtual const std::vector<uint8_t>& Image() const = 0;
};

enum class TPacking { Lzw, Lz4 };

// Packs `elements` (ElementCount × elementSize bytes, little-endian words).
std::unique_ptr<CRandomAccessPackedBufferBase> PackBuffer(TPacking packing,
                                                          const std::vector<uint8_t>& elements,
                                                          unsigned elementSize, bool bUpdatable);
// Takes a packed image read from a file; throws ChessException when it is damaged.
std::unique_ptr<CRandomAccessPackedBufferBase> OpenPackedBuffer(TPacking packing, std::vector<uint8_t> image,
                                                                unsigned elementSize);

}  // namespace moremate::RandomAccessLZWBuffer
