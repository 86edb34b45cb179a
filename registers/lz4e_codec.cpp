#include "lz4e_codec.h"

#include <algorithm>
#include <cstring>

namespace moremate {
namespace {

// The encoder keeps the last position of every 4-byte prefix for near matches and of every
// 8-byte prefix for far ones: repeats of whole records lie far apart, and a long prefix keeps
// that table from being overwritten by the short repeats inside records.
constexpr int kNearHashBits = 16;
constexpr int kFarHashBits = 20;
// No match starts in the last 12 bytes nor reaches into the last 5, as in LZ4.
constexpr size_t kMatchStartMargin = 12;
constexpr size_t kLastLiterals = 5;
// After this many positions without a match the search steps faster over the data.
constexpr int kSkipShift = 6;

uint32_t Load32(const uint8_t* p) {
    uint32_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
}
uint64_t Load64(const uint8_t* p) {
    uint64_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
}
uint32_t NearHash(const uint8_t* p) {
    return (Load32(p) * 2654435761u) >> (32 - kNearHashBits);
}
uint32_t FarHash(const uint8_t* p) {
    return static_cast<uint32_t>((Load64(p) * 0x9E3779B97F4A7C15ull) >> (64 - kFarHashBits));
}

size_t CommonLength(const uint8_t* a, const uint8_t* b, const uint8_t* pLimit) {
    const uint8_t* const pStart = b;
    while (b + 8 <= pLimit) {
        const uint64_t difference = Load64(a) ^ Load64(b);
        if (difference) return static_cast<size_t>(b - pStart) + (__builtin_ctzll(difference) >> 3);
        a += 8;
        b += 8;
    }
    while (b < pLimit && *a == *b) ++a, ++b;
    return static_cast<size_t>(b - pStart);
}

void PutLength(std::vector<uint8_t>& out, size_t value) {
    for (; value >= 255; value -= 255) out.push_back(255);
    out.push_back(static_cast<uint8_t>(value));
}

struct TMatch {
    size_t nLength = 0;
    size_t nOffset = 0;
};

class CEncoder {
  public:
    CEncoder(const uint8_t* pSource, size_t size, std::vector<uint8_t>& out)
        : m_pBase(pSource),
          m_pEnd(pSource + size),
          m_out(out),
          m_near(size_t{1} << kNearHashBits),
          m_far(size_t{1} << kFarHashBits) {}

    void Run() {
        const uint8_t* pAnchor = m_pBase;
        if (m_pEnd - m_pBase > static_cast<ptrdiff_t>(kMatchStartMargin)) {
            const uint8_t* const pMatchStartLimit = m_pEnd - kMatchStartMargin;
            const uint8_t* p = m_pBase;
            while (p < pMatchStartLimit) {
                const TMatch match = FindMatch(p);
                if (match.nLength == 0) {
                    p += 1 + ((p - pAnchor) >> kSkipShift);
                    continue;
                }
                EmitSequence(pAnchor, p, match);
                p += match.nLength;
                pAnchor = p;
                if (p - 2 > m_pBase && p < pMatchStartLimit) Remember(p - 2);
            }
        }
        EmitLiterals(pAnchor, m_pEnd);
    }

  private:
    void Remember(const uint8_t* p) {
        const uint32_t position = static_cast<uint32_t>(p - m_pBase) + 1;
        m_near[NearHash(p)] = position;
        m_far[FarHash(p)] = position;
    }

    // The longer of the candidates of both tables; far matches only from kMinFarMatch bytes on.
    TMatch FindMatch(const uint8_t* p) {
        const uint32_t nearCandidate = m_near[NearHash(p)];
        const uint32_t farCandidate = m_far[FarHash(p)];
        Remember(p);
        TMatch best;
        for (const uint32_t candidate : {nearCandidate, farCandidate}) {
            if (candidate == 0) continue;
            const uint8_t* pCandidate = m_pBase + candidate - 1;
            const size_t nOffset = static_cast<size_t>(p - pCandidate);
            if (nOffset > CLz4eCodec::kMaxFarOffset) continue;
            const size_t nLength = CommonLength(pCandidate, p, m_pEnd - kLastLiterals);
            const size_t nNeeded =
                nOffset > CLz4eCodec::kMaxNearOffset ? CLz4eCodec::kMinFarMatch : CLz4eCodec::kMinMatch;
            if (nLength >= nNeeded && nLength > best.nLength) best = {nLength, nOffset};
        }
        return best;
    }

    void EmitSequence(const uint8_t* pAnchor, const uint8_t* p, const TMatch& match) {
        const size_t nCode = match.nLength - CLz4eCodec::kMinMatch;
        const bool bFar = match.nOffset > CLz4eCodec::kMaxNearOffset;
        const bool bExtended = bFar || nCode >= 15;
        EmitLiterals(pAnchor, p, bExtended ? 15 : static_cast<uint8_t>(nCode));
        if (bExtended) {
            const size_t nRest = nCode - 15;
            m_out.push_back(static_cast<uint8_t>(std::min<size_t>(nRest, 127) | (bFar ? 0x80 : 0)));
            if (nRest >= 127) PutLength(m_out, nRest - 127);
        }
        m_out.push_back(static_cast<uint8_t>(match.nOffset));
        m_out.push_back(static_cast<uint8_t>(match.nOffset >> 8));
        if (bFar) m_out.push_back(static_cast<uint8_t>(match.nOffset >> 16));
    }

    // The token with the literal count and the match code, then the literals.
    void EmitLiterals(const uint8_t* pFrom, const uint8_t* pTo, uint8_t nMatchCode = 0) {
        const size_t nLiterals = static_cast<size_t>(pTo - pFrom);
        m_out.push_back(static_cast<uint8_t>(std::min<size_t>(nLiterals, 15) << 4 | nMatchCode));
        if (nLiterals >= 15) PutLength(m_out, nLiterals - 15);
        m_out.insert(m_out.end(), pFrom, pTo);
    }

    const uint8_t* const m_pBase;
    const uint8_t* const m_pEnd;
    std::vector<uint8_t>& m_out;
    std::vector<uint32_t> m_near;  // position + 1 of the last occurrence; 0 = none
    std::vector<uint32_t> m_far;
};

// Adds extension bytes to `value`; false when the input ends inside them.
bool ReadLength(const uint8_t*& p, const uint8_t* pEnd, size_t& value) {
    for (;;) {
        if (p == pEnd) return false;
        const uint8_t byte = *p++;
        value += byte;
        if (byte != 255) return true;
    }
}

// Copies a match of `nLength` bytes from `nOffset` back; room and offset are already checked.
void CopyMatch(uint8_t* p, size_t nOffset, size_t nLength, const uint8_t* pEnd) {
    const uint8_t* pMatch = p - nOffset;
    if (nOffset >= 16 && static_cast<size_t>(pEnd - p) >= nLength + 15) {
        // Chunks of 16 may run past the match but stay inside the buffer; they never read bytes
        // this copy has yet to write.
        for (uint8_t* const pStop = p + nLength; p < pStop; p += 16, pMatch += 16) std::memcpy(p, pMatch, 16);
    } else if (nOffset >= nLength) {
        std::memcpy(p, pMatch, nLength);
    } else {
        for (size_t i = 0; i < nLength; ++i) p[i] = pMatch[i];
    }
}

}  // namespace

void CLz4eCodec::Compress(const uint8_t* pSource, size_t size, std::vector<uint8_t>& out) {
    CEncoder(pSource, size, out).Run();
}

bool CLz4eCodec::Decompress(const uint8_t* pSource, size_t nSourceSize, uint8_t* pDestination,
                            size_t nDestinationSize) {
    const uint8_t* p = pSource;
    const uint8_t* const pEnd = pSource + nSourceSize;
    uint8_t* out = pDestination;
    uint8_t* const pOutEnd = pDestination + nDestinationSize;
    for (;;) {
        if (p == pEnd) return false;
        const uint8_t token = *p++;
        size_t nLiterals = token >> 4;
        if (nLiterals == 15 && !ReadLength(p, pEnd, nLiterals)) return false;
        if (nLiterals > static_cast<size_t>(pEnd - p) || nLiterals > static_cast<size_t>(pOutEnd - out))
            return false;
        if (nLiterals) std::memcpy(out, p, nLiterals);  // an empty output may have no buffer at all
        out += nLiterals;
        p += nLiterals;
        if (p == pEnd) return out == pOutEnd;

        size_t nLength = token & 15;
        bool bFar = false;
        if (nLength == 15) {
            const uint8_t byte = *p++;
            bFar = (byte & 0x80) != 0;
            nLength += byte & 127;
            if ((byte & 127) == 127 && !ReadLength(p, pEnd, nLength)) return false;
        }
        nLength += kMinMatch;
        const size_t nOffsetBytes = bFar ? 3 : 2;
        if (static_cast<size_t>(pEnd - p) < nOffsetBytes) return false;
        size_t nOffset = p[0] | size_t{p[1]} << 8;
        if (bFar) nOffset |= size_t{p[2]} << 16;
        p += nOffsetBytes;
        if (nOffset == 0 || nOffset > static_cast<size_t>(out - pDestination) ||
            nLength > static_cast<size_t>(pOutEnd - out))
            return false;
        CopyMatch(out, nOffset, nLength, pOutEnd);
        out += nLength;
    }
}

}  // namespace moremate
