// The register's record: a position key of 64 piece bytes and the two move counts known for it.
// Entries are 68 bytes, packed, and stored by value in the buckets of the hash table.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "core/chessboard.h"

namespace moremate {

// The piece byte of every square in board order. Byte-aligned so that it packs into the entry;
// compared as eight 64-bit words (loads through memcpy, which compile to plain unaligned moves).
struct TChessboardRegisterItem {
    uint8_t squares[64] = {};

    uint64_t Word(int i) const {
        uint64_t word;
        std::memcpy(&word, squares + 8 * i, sizeof word);
        return word;
    }
    // Branch-free: the differences of all eight words are OR-ed, which the compiler vectorises.
    friend bool operator==(const TChessboardRegisterItem& a, const TChessboardRegisterItem& b) {
        uint64_t difference = 0;
        for (int i = 0; i < 8; ++i) difference |= a.Word(i) ^ b.Word(i);
        return difference == 0;
    }
    // Order of the sorted buckets and of the sub-problem maps: word by word, as unsigned numbers.
    friend bool operator<(const TChessboardRegisterItem& a, const TChessboardRegisterItem& b) {
        for (int i = 0; i < 8; ++i) {
            if (a.Word(i) != b.Word(i)) return a.Word(i) < b.Word(i);
        }
        return false;
    }
};

#pragma pack(push, 1)
// In a doubtfulness register `MovesMate` holds the level found "mate doubtful" and `MovesNoMate`
// the level known "not doubtful". Levels are half-moves remaining: odd means White to move.
struct TChessboardRegisterEntry {
    TChessboardRegisterItem key;
    uint16_t MovesMate = 0;    // smallest n with a mate in n found; 0 = none known
    uint16_t MovesNoMate = 0;  // largest n proven to hold no mate in n; 0 = nothing known
};
#pragma pack(pop)
static_assert(sizeof(TChessboardRegisterEntry) == 68);

inline TChessboardRegisterItem RegisterItemOf(const TChessboard& board) {
    TChessboardRegisterItem item;
    std::memcpy(item.squares, board.squares, sizeof item.squares);
    return item;
}

// The board of a key's piece bytes, with the side to move given by the level n.
inline TChessboard ChessboardOf(const TChessboardRegisterItem& item, uint16_t n) {
    TChessboard board;
    std::memcpy(board.squares, item.squares, sizeof board.squares);
    board.movesLeft = board.movesAtStart = static_cast<int16_t>(n);
    return board;
}

// Byte i weighs (i + 1) squared, at most 4,096: the weights fit 16 bits, and the whole sum
// (at most 255 times the sum of the weights, 22.8 million) fits 32 bits without wrapping.
alignas(16) inline constexpr std::array<int16_t, 64> kRegisterHashWeights = [] {
    std::array<int16_t, 64> weights{};
    for (int i = 0; i < 64; ++i) weights[i] = static_cast<int16_t>((i + 1) * (i + 1));
    return weights;
}();

// Sum of byte[i] * (i + 1)^2 modulo 2^32. Every register operation starts with it: the bytes are
// widened to 16 bits and multiplied by their weights eight at a time, each pair of products added
// into one 32-bit lane (the SSE2 multiply-add), instead of widening them to 32 bits.
inline uint32_t RegisterHash(const TChessboardRegisterItem& item) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const auto* pWeights = reinterpret_cast<const __m128i*>(kRegisterHashWeights.data());
    __m128i sum = zero;
    for (int i = 0; i < 4; ++i) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(item.squares + 16 * i));
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
    for (int i = 0; i < 64; ++i) sum += item.squares[i] * static_cast<uint32_t>(kRegisterHashWeights[i]);
    return sum;
#endif
}

}  // namespace moremate
