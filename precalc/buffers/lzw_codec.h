// One block in the LZW variant (lzw_dictionary.h): greedy matching from the preset, each code
// written in the current width, least significant bit first, into an output that starts zeroed.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lzw_dictionary.h"

namespace moremate::RandomAccessLZWBuffer {

// Packs `nSize` bytes into at most `nRoom` bytes at `pOut`; returns the bytes used (the bits
// rounded up), or 0 when they do not fit.
size_t LzwPack(const TLzwPreset& preset, const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom);

// Unpacks exactly `nSize` bytes from a block of at most `nPacked` bytes. False for an unknown
// code, a block that ends early or strings that overrun `nSize`; never reads or writes outside.
bool LzwUnpack(const TLzwPreset& preset, const uint8_t* pPacked, size_t nPacked, uint8_t* pOut, size_t nSize);

}  // namespace moremate::RandomAccessLZWBuffer
