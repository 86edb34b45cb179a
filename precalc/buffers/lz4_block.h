// One block as LZ4 block sequences (the "LZ4 " form of register files, without its header),
// after a u16 little-endian count of the sequence bytes: a block's room in an updatable buffer
// may be longer than the sequences, and LZ4's decoder needs their exact end.
#pragma once

#include <cstddef>
#include <cstdint>

namespace moremate::RandomAccessLZWBuffer {

// Blocks of up to this many bytes; their sequences never reach 64 KiB.
inline constexpr size_t kLz4MaxBlock = 32768;

size_t Lz4Pack(const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom);
bool Lz4Unpack(const uint8_t* pPacked, size_t nPacked, uint8_t* pOut, size_t nSize);

}  // namespace moremate::RandomAccessLZWBuffer
