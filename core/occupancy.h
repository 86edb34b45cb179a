// Attack sets read from the board's bit boards: the squares a slider reaches along its rays up to
// and including the first piece met (one table read, see CSliderIndex), the pieces of a side
// that attack a square, and the pieces that alone stand between a square and a slider.
#pragma once

#include <bit>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "chessboard.h"
#include "tables.h"
#include "types.h"

namespace moremate {

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__POPCNT__)
// Whether the processor has the bit count instruction, which a build for the x86-64 baseline does
// not assume (std::popcount then calls a library routine). False until the start-up code has
// asked, which only costs the slower count.
inline const bool g_bitCountInstruction = (__builtin_cpu_init(), __builtin_cpu_supports("popcnt"));
#endif

// The number of bits set.
inline int BitCount(uint64_t bits) {
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__POPCNT__)
    if (g_bitCountInstruction) {
        uint64_t count;
        asm("popcnt %1, %0" : "=r"(count) : "rm"(bits));
        return static_cast<int>(count);
    }
#endif
    return std::popcount(bits);
}

// Bit i set when square i of the piece bytes holds a piece.
inline uint64_t Occupied(const uint8_t* squares) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    uint64_t empty = 0;
    for (int i = 0; i < 4; ++i) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(squares + 16 * i));
        empty |= uint64_t{static_cast<uint16_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, zero)))} << (16 * i);
    }
    return ~empty;
#else
    uint64_t occupied = 0;
    for (int i = 0; i < 64; ++i) occupied |= uint64_t{squares[i] != kEmpty} << i;
    return occupied;
#endif
}

// planes[k]: the squares whose piece byte has bit k set. Shifted left by 7 - k, each byte has its
// bit k on top, and the processor gathers the top bits of sixteen bytes at once.
inline void PieceBitPlanes(const uint8_t* squares, uint64_t (&planes)[8]) {
#if defined(__SSE2__)
    __m128i bytes[4];
    for (int i = 0; i < 4; ++i)
        bytes[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(squares + 16 * i));
    for (int k = 0; k < 8; ++k) {
        uint64_t plane = 0;
        for (int i = 0; i < 4; ++i) {
            const __m128i shifted = _mm_sll_epi16(bytes[i], _mm_cvtsi32_si128(7 - k));
            plane |= uint64_t{static_cast<uint16_t>(_mm_movemask_epi8(shifted))} << (16 * i);
        }
        planes[k] = plane;
    }
#else
    for (int k = 0; k < 8; ++k) {
        planes[k] = 0;
        for (int i = 0; i < 64; ++i) planes[k] |= uint64_t{(squares[i] >> k) & 1u} << i;
    }
#endif
}

inline constexpr uint64_t kFileA = 0x0101010101010101ull;
inline constexpr uint64_t kFileH = kFileA << 7;

// The squares the pawns of `colour` on `pawns` capture on towards the a-file, and towards the h-file:
// the whole set at once, by shifts of the mask.
inline uint64_t PawnCapturesTowardsA(uint64_t pawns, uint8_t colour) {
    pawns &= ~kFileA;
    return colour == kWhite ? pawns << 7 : pawns >> 9;
}
inline uint64_t PawnCapturesTowardsH(uint64_t pawns, uint8_t colour) {
    pawns &= ~kFileH;
    return colour == kWhite ? pawns << 9 : pawns >> 7;
}

// Whether the squares of a ray rise in number away from its start (north, east, north-east,
// north-west): the nearest piece on it is then its lowest bit, else its highest.
constexpr bool RayRunsUp(int d) {
    return d == kNorth || d == kEast || d == kNorthEast || d == kNorthWest;
}

// The squares a slider on the square of `index` reaches with the pieces of `occupied`, up to and
// including the first piece on each of its rays.
inline uint64_t Reach(const CSliderIndex& index, uint64_t occupied) {
    return g_geometry.sliderReach[index.offset + (((occupied & index.mask) * index.factor) >> index.shift)];
}
inline uint64_t DiagonalAttacks(uint64_t occupied, int sq) {
    return Reach(g_geometry.diagonalIndex[sq], occupied);
}
inline uint64_t LineAttacks(uint64_t occupied, int sq) {
    return Reach(g_geometry.lineIndex[sq], occupied);
}

// Index of a colour in the tables kept per side.
constexpr int SideIndex(uint8_t colour) {
    return colour == kWhite ? 0 : 1;
}

// The pieces of `colour` that attack `sq` when the pieces stand on the squares of `occupied`: a
// piece of the board off it is lifted off, a square added to it blocks the lines through it.
inline uint64_t AttackersOf(const TChessboard& board, int sq, uint8_t colour, uint64_t occupied) {
    const uint64_t theirs = board.With(colour) & occupied;
    uint64_t attackers = (g_geometry.knightMask[sq] & board.With(kKnight)) |
                         (g_geometry.kingMask[sq] & board.With(kKing)) |
                         (g_geometry.pawnCaptures[SideIndex(Opponent(colour))][sq] & board.With(kPawn));
    // The slider rays are worked out only when a slider of that kind could stand on them.
    const uint64_t diagonal = theirs & board.With(kBishop) & g_geometry.diagonals[sq];
    if (diagonal) attackers |= DiagonalAttacks(occupied, sq) & diagonal;
    const uint64_t line = theirs & board.With(kRook) & g_geometry.lines[sq];
    if (line) attackers |= LineAttacks(occupied, sq) & line;
    return attackers & theirs;
}

// The pieces among `blockers` that stand alone between `sq` and a slider of `colour` on one of
// its lines or diagonals: pinned pieces, or pieces whose leaving uncovers a check.
inline uint64_t LoneBlockers(const TChessboard& board, int sq, uint8_t colour, uint64_t blockers) {
    const uint64_t occupied = board.Occupied();
    uint64_t sliders = board.With(colour) & ((g_geometry.diagonals[sq] & board.With(kBishop)) |
                                             (g_geometry.lines[sq] & board.With(kRook)));
    uint64_t lone = 0;
    for (; sliders; sliders &= sliders - 1) {
        const uint64_t between = g_geometry.between[sq][std::countr_zero(sliders)] & occupied;
        if (between && !(between & (between - 1)) && (between & blockers)) lone |= between;
    }
    return lone;
}

}  // namespace moremate
