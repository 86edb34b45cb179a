// The extended LZ4 block format "LZ4e": LZ4's sequences with matches reaching back up to 16 MiB,
// for register data whose repeats lie far apart (positions of one line stored in distant buckets).
//
// A block is a series of sequences; each sequence is
//
//   token                 high nibble: literal count, low nibble: match code
//   [literal extension]   when the high nibble is 15: bytes added to 15 while they are 255,
//                         the first byte below 255 ends the extension
//   literals              the literal count of raw bytes
//   -- the block ends here when the input is exhausted after the literals --
//   [match byte b]        when the match code is 15: the match length is (b AND 127) + 15 and,
//                         when b AND 127 is 127, further bytes added while they are 255;
//                         bit 7 of b selects a 3-byte offset
//   offset                2 bytes, or 3 when bit 7 of b is set; little-endian, at least 1, never
//                         more than the bytes already produced
//
// The match length is the code (or the extended length) plus 4. A match below 15 + 4 bytes thus
// always has a 2-byte offset: far matches (offset above 65,535) are at least 19 bytes long.
// Every block ends with a literal run, possibly empty; a block of no bytes is the single token 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace moremate {

class CLz4eCodec {
  public:
    static constexpr size_t kMinMatch = 4;
    static constexpr size_t kMinFarMatch = 15 + kMinMatch;
    static constexpr size_t kMaxNearOffset = 0xFFFF;
    static constexpr size_t kMaxFarOffset = 0xFFFFFF;

    // Appends the sequences encoding `size` bytes (below 4 GiB) to `out`.
    static void Compress(const uint8_t* pSource, size_t size, std::vector<uint8_t>& out);

    // Decodes exactly `nDestinationSize` bytes. False for anything malformed or truncated, and
    // when the sequences produce another number of bytes; never reads or writes out of bounds.
    static bool Decompress(const uint8_t* pSource, size_t nSourceSize, uint8_t* pDestination,
                           size_t nDestinationSize);
};

}  // namespace moremate
