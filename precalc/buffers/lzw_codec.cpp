#include "lzw_codec.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace moremate::RandomAccessLZWBuffer {
namespace {

class CBitWriter {
  public:
    CBitWriter(uint8_t* pOut, size_t nRoom) : m_pOut(pOut), m_nRoomBits(nRoom * 8) {
        std::memset(pOut, 0, nRoom);
    }

    bool Put(uint32_t nCode, unsigned nWidth) {
        if (m_nBit + nWidth > m_nRoomBits) return false;
        for (unsigned nDone = 0; nDone < nWidth;) {
            const unsigned nShift = m_nBit % 8;
            m_pOut[m_nBit / 8] |= static_cast<uint8_t>(nCode >> nDone << nShift);
            const unsigned nTaken = 8 - nShift < nWidth - nDone ? 8 - nShift : nWidth - nDone;
            nDone += nTaken;
            m_nBit += nTaken;
        }
        return true;
    }
    size_t ByteCount() const { return (m_nBit + 7) / 8; }

  private:
    uint8_t* const m_pOut;
    const size_t m_nRoomBits;
    size_t m_nBit = 0;
};

class CBitReader {
  public:
    CBitReader(const uint8_t* pIn, size_t nSize) : m_pIn(pIn), m_nSize(nSize) {}

    // False when the block has fewer bits left than `nWidth` (at most 24).
    bool Get(unsigned nWidth, uint32_t& nCode) {
        if (m_nBit + nWidth > m_nSize * 8) return false;
        const size_t nByte = m_nBit / 8;
        uint32_t nWindow = 0;
        if (nByte + 4 <= m_nSize) {
            std::memcpy(&nWindow, m_pIn + nByte, 4);
        } else {
            for (size_t i = nByte; i < m_nSize; ++i) nWindow |= uint32_t{m_pIn[i]} << (8 * (i - nByte));
        }
        nCode = (nWindow >> (m_nBit % 8)) & ((1u << nWidth) - 1);
        m_nBit += nWidth;
        return true;
    }

  private:
    const uint8_t* const m_pIn;
    const size_t m_nSize;
    size_t m_nBit = 0;
};

constexpr size_t kChunk = 16;

// Copies forwards: the newest entry may end with the first byte this copy writes. Away from the
// end of the block and from such an overlap, whole chunks are copied: the bytes past the string
// that they carry are overwritten by the strings that follow, and a string read from the
// unpacked bytes ends before the place it is copied to, so the chunks read nothing this copy
// writes before reading it. A chunk's tail may still reach into the chunk it is copied to (a
// string just before its copy), hence memmove, which compiles to the same load and store.
void CopyString(uint8_t* pOut, const uint8_t* pOutEnd, const uint8_t* pString, size_t nLength) {
    const bool bApart = pString + nLength <= pOut || pString >= pOutEnd;
    if (bApart && pOut + nLength + kChunk <= pOutEnd) {
        for (size_t i = 0; i < nLength; i += kChunk) std::memmove(pOut + i, pString + i, kChunk);
    } else if (bApart) {
        std::memcpy(pOut, pString, nLength);
    } else {
        for (size_t i = 0; i < nLength; ++i) pOut[i] = pString[i];
    }
}

}  // namespace

size_t LzwPack(const TLzwPreset& preset, const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom) {
    thread_local CLzwEncoderDictionary dictionary;
    dictionary.Reset(preset.encoder);
    CBitWriter writer(pOut, nRoom);
    size_t i = 0;
    while (i < nSize) {
        const CLzwEncoderDictionary::TMatch match = dictionary.LongestMatch(pSource + i, nSize - i);
        if (!writer.Put(match.nCode, dictionary.Growth().nWidth)) return 0;
        if (i + match.nLength < nSize) dictionary.Add(match.nInsertAt, pSource + i, match.nLength + 1u);
        i += match.nLength;
    }
    return writer.ByteCount();
}

bool LzwUnpack(const TLzwPreset& preset, const uint8_t* pPacked, size_t nPacked, uint8_t* pOut,
               size_t nSize) {
    thread_local std::array<TLzwDecoderEntry, kLzwMaxEntries> entries;
    TLzwGrowth growth = preset.encoder.Growth();
    std::copy_n(preset.decoder.begin(), growth.nCount, entries.begin());
    CBitReader reader(pPacked, nPacked);
    size_t nDone = 0;
    while (nDone < nSize) {
        uint32_t nCode;
        if (!reader.Get(growth.nWidth, nCode) || nCode >= growth.nCount) return false;
        const TLzwDecoderEntry entry = entries[nCode];
        if (entry.nLength > nSize - nDone) return false;
        CopyString(pOut + nDone, pOut + nSize, entry.pBytes, entry.nLength);
        // The packer added this string and the byte after it, when a byte follows.
        if (nDone + entry.nLength < nSize && growth.Admits(entry.nLength + 1u)) {
            entries[growth.nCount] = {pOut + nDone, static_cast<uint16_t>(entry.nLength + 1)};
            growth.Grow(entry.nLength + 1u);
        }
        nDone += entry.nLength;
    }
    return true;
}

}  // namespace moremate::RandomAccessLZWBuffer
