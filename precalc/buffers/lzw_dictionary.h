// The dictionary of the LZW variant that packs the blocks of a buffer. It starts every block from
// a preset made for the buffer's fill byte f:
//
//   1. every byte value b from 0 to 255, and directly after each b from 1 to 20 the pair (b, f);
//   2. runs of f of every length from 2 to 128.
//
// The 403 entries of the preset (402 when f lies in 1..20: the pair (f, f) is also the run of
// two) leave the code width at 9. A new entry gets the next code; each time the entry count
// reaches the threshold the width grows by one and the threshold doubles. No entry is added
// beyond 2,048 entries, beyond 255 bytes, or when the 32,766-byte string store is full.
//
// The packing side keeps its entries sorted by their bytes and finds strings by binary search;
// the unpacking side only maps codes to strings.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace moremate::RandomAccessLZWBuffer {

inline constexpr size_t kLzwMaxEntries = 2048;
inline constexpr size_t kLzwStoreSize = 32766;
inline constexpr size_t kLzwMaxLength = 255;

// The count, store use and code width both sides keep in step.
struct TLzwGrowth {
    uint16_t nCount = 0;
    uint16_t nStoreUsed = 0;
    uint16_t nThreshold = 256;
    uint8_t nWidth = 8;

    bool Admits(size_t nLength) const {
        return nCount < kLzwMaxEntries && nLength <= kLzwMaxLength && nStoreUsed + nLength <= kLzwStoreSize;
    }
    void Grow(size_t nLength) {
        nStoreUsed = static_cast<uint16_t>(nStoreUsed + nLength);
        if (++nCount == nThreshold) {
            ++nWidth;
            nThreshold = static_cast<uint16_t>(nThreshold * 2);
        }
    }
};

// The entries always hold every beginning of every entry (an entry is an entry plus one byte), so
// the longest entry that starts a string is found from the string's place in the sorted order.
class CLzwEncoderDictionary {
  public:
    struct TMatch {
        uint16_t nCode = 0;
        uint16_t nLength = 0;
        // Where the match plus the next byte of the string goes in the sorted order.
        uint16_t nInsertAt = 0;
    };

    // The preset for the fill byte.
    static CLzwEncoderDictionary Preset(uint8_t nFill);
    // Takes the entries of `preset` (a partial copy: only what the preset uses).
    void Reset(const CLzwEncoderDictionary& preset);

    const TLzwGrowth& Growth() const { return m_growth; }
    // The longest entry that starts the `nLength` bytes (at least one) at `pBytes`.
    TMatch LongestMatch(const uint8_t* pBytes, size_t nLength) const;
    // Adds the string at sorted position `nSorted` when the growth rule admits it.
    void Add(uint16_t nSorted, const uint8_t* pBytes, size_t nLength);

    const uint8_t* Bytes(uint16_t nCode) const { return m_store.data() + m_offsets[nCode]; }
    uint8_t Length(uint16_t nCode) const { return m_lengths[nCode]; }

  private:
    // Adds a string of the preset unless it is there already.
    void AddNew(const uint8_t* pBytes, size_t nLength);
    // Entry against string: negative, 0 or positive as the entry sorts before, equal or after.
    int Compare(uint16_t nCode, const uint8_t* pBytes, size_t nLength) const;
    size_t CommonLength(uint16_t nCode, const uint8_t* pBytes, size_t nLength) const;

    TLzwGrowth m_growth;
    std::array<uint16_t, kLzwMaxEntries> m_sorted;   // codes in the order of their bytes
    std::array<uint16_t, kLzwMaxEntries> m_offsets;  // by code: where the bytes lie in the store
    std::array<uint8_t, kLzwMaxEntries> m_lengths;   // by code
    std::array<uint8_t, kLzwStoreSize> m_store;
};

// The unpacking side: strings by code, pointing into the preset's store or into the bytes
// already unpacked (an entry is always a string the block has produced, plus the byte after it).
struct TLzwDecoderEntry {
    const uint8_t* pBytes;
    uint16_t nLength;
};

// The preset in both forms, made once per buffer.
struct TLzwPreset {
    explicit TLzwPreset(uint8_t nFill);
    // The decoder's entries point into the encoder's store.
    TLzwPreset(const TLzwPreset&) = delete;
    TLzwPreset& operator=(const TLzwPreset&) = delete;

    CLzwEncoderDictionary encoder;
    std::array<TLzwDecoderEntry, kLzwMaxEntries> decoder;
};

}  // namespace moremate::RandomAccessLZWBuffer
