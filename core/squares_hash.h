// The hash of a position's 64 piece bytes that places it in the registers. It is a weighted sum, so
// a move changes it by a few products: a board keeps it up to date as it keeps its bit boards.
#pragma once

#include <array>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace moremate {

// Byte i weighs (i + 1) squared, at most 4,096: the weights fit 16 bits, and the whole sum
// (at most 255 times the sum of the weights, 22.8 million) fits 32 bits without wrapping.
alignas(16) inline constexpr std::array<int16_t, 64> kSquareHashWeights = [] {
    std::array<int16_t, 64> weights{};
    for (int i = 0; i < 64; ++i) weights[i] = static_cast<int16_t>((i + 1) * (i + 1));
    return weights;
}();

// Sum of byte[i] * (i + 1)^2 modulo 2^32: the bytes are widened to 16 bits and multiplied by their
// weights eight at a time, each pair of products added into one 32-bit lane (the SSE2
// multiply-add), instead of widening them to 32 bits.
inline uint32_t SquaresHash(const uint8_t* squares) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const auto* pWeights = reinterpret_cast<const __m128i*>(kSquareHashWeights.data());
    __m128i sum = zero;
    for (int i = 0; i < 4; ++i) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(squares + 16 * i));
        sum = _mm_add_epi32(sum,
                            _mm_madd_epi16(_mm_unpacklo_epi8(bytes, zero), _mm_load_si128(pWeights + 2 * i)));
        sum = _mm_add_epi32(
            sum, _mm_madd_epi16(_mm_unpackhi_epi8(bytes, zero), _mm_load_si128(pWeights + 2 * i + 1)));
    }
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0x4E));  // lanes 2, 3 onto 0, 1
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0xB1));  // lane 1 onto 0
    return static_cast<uint32_t>(_mm_cvtsi128_si32(sum));
#else
    uint32_t sum = 0;
    for (int i = 0; i < 64; ++i) sum += squares[i] * static_cast<uint32_t>(kSquareHashWeights[i]);
    return sum;
#endif
}

// What the hash gains when the byte of `square` changes from `before` to `after` (modulo 2^32).
constexpr uint32_t SquareHashChange(int square, uint8_t before, uint8_t after) {
    return (uint32_t{after} - uint32_t{before}) * static_cast<uint32_t>(kSquareHashWeights[square]);
}

}  // namespace moremate
