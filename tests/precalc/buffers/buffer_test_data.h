// Data for the packed buffer tests: bytes at random, and data shaped like endgame tables (long
// runs of 0 with small values among them).
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace moremate::RandomAccessLZWBuffer::testing {

inline std::vector<uint8_t> RandomBytes(size_t nSize, uint32_t nSeed) {
    std::mt19937 random(nSeed);
    std::vector<uint8_t> bytes(nSize);
    for (uint8_t& b : bytes) b = static_cast<uint8_t>(random());
    return bytes;
}

// Elements of `nElementSize` bytes, little-endian: runs of 0, then runs of small values.
inline std::vector<uint8_t> EndgameLikeElements(size_t nElements, unsigned nElementSize, uint32_t nSeed) {
    std::mt19937 random(nSeed);
    std::vector<uint8_t> bytes;
    bytes.reserve(nElements * nElementSize);
    while (bytes.size() < nElements * nElementSize) {
        const size_t nRun = 1 + random() % 400;
        const uint32_t nValue = random() % 3 == 0 ? 0 : 1 + random() % (nElementSize == 1 ? 60 : 700);
        for (size_t i = 0; i < nRun && bytes.size() < nElements * nElementSize; ++i) {
            const uint32_t nElement = random() % 20 == 0 ? random() % 16 : nValue;
            bytes.push_back(static_cast<uint8_t>(nElement));
            if (nElementSize == 2) bytes.push_back(static_cast<uint8_t>(nElement >> 8));
        }
    }
    return bytes;
}

inline uint16_t ElementOf(const std::vector<uint8_t>& bytes, unsigned nElementSize, size_t nIndex) {
    const uint8_t* p = bytes.data() + nIndex * nElementSize;
    return nElementSize == 1 ? p[0] : static_cast<uint16_t>(p[0] | p[1] << 8);
}

}  // namespace moremate::RandomAccessLZWBuffer::testing
