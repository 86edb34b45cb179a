// The board's occupied squares as a bit mask, and the first piece on a ray read from it: a ray's
// nearest piece is found with one bit scan instead of a walk over its empty squares.
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

// Bit i set when square i holds a piece.
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

// Whether the squares of a ray rise in number away from its start (north, east, north-east,
// north-west): the nearest piece on it is then its lowest bit, else its highest.
constexpr bool RayRunsUp(int d) {
    return d == kNorth || d == kEast || d == kNorthEast || d == kNorthWest;
}

// Whether `piece` is a slider of `colour` moving along direction `d` (a bishop or queen on a
// diagonal, a rook or queen on a line).
inline bool SlidesAlong(Piece piece, uint8_t colour, int d) {
    const uint8_t slider = colour | (IsDiagonal(d) ? kBishop : kRook);
    return (piece & (kColourMask | slider)) == slider;
}

// The directions in which a side's sliders can reach anything, from its piece counts.
struct TSliderDirections {
    bool diagonals = false;  // a queen or a bishop
    bool lines = false;      // a queen or a rook
    bool Any() const { return diagonals || lines; }
    bool Has(int d) const { return IsDiagonal(d) ? diagonals : lines; }
};
inline TSliderDirections SliderDirections(const TChessboard& board, uint8_t colour) {
    const bool white = colour == kWhite;
    const int queens = white ? board.whiteQueens : board.blackQueens;
    return {queens + (white ? board.whiteBishops : board.blackBishops) != 0,
            queens + (white ? board.whiteRooks : board.blackRooks) != 0};
}

// The square of the first piece on ray `d` from `sq`, or -1 when the ray is empty.
inline int FirstOnRay(uint64_t occupied, int sq, int d) {
    const uint64_t pieces = occupied & g_geometry.rayMask[sq][d];
    if (!pieces) return -1;
    return RayRunsUp(d) ? std::countr_zero(pieces) : 63 - std::countl_zero(pieces);
}

}  // namespace moremate
