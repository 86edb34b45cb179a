#include "lz4_block.h"

#include <lz4.h>

namespace moremate::RandomAccessLZWBuffer {
namespace {

constexpr size_t kCountBytes = 2;

}  // namespace

size_t Lz4Pack(const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom) {
    if (nSize > kLz4MaxBlock || nRoom <= kCountBytes) return 0;
    const int nSequences = LZ4_compress_default(
        reinterpret_cast<const char*>(pSource), reinterpret_cast<char*>(pOut + kCountBytes),
        static_cast<int>(nSize), static_cast<int>(nRoom - kCountBytes));
    if (nSequences <= 0) return 0;
    pOut[0] = static_cast<uint8_t>(nSequences);
    pOut[1] = static_cast<uint8_t>(nSequences >> 8);
    return kCountBytes + static_cast<size_t>(nSequences);
}

bool Lz4Unpack(const uint8_t* pPacked, size_t nPacked, uint8_t* pOut, size_t nSize) {
    if (nPacked < kCountBytes || nSize > kLz4MaxBlock) return false;
    const size_t nSequences = pPacked[0] | size_t{pPacked[1]} << 8;
    if (nSequences > nPacked - kCountBytes) return false;
    const int nDecoded = LZ4_decompress_safe(reinterpret_cast<const char*>(pPacked + kCountBytes),
                                             reinterpret_cast<char*>(pOut), static_cast<int>(nSequences),
                                             static_cast<int>(nSize));
    return nDecoded >= 0 && static_cast<size_t>(nDecoded) == nSize;
}

}  // namespace moremate::RandomAccessLZWBuffer
