// Precomputed geometry for the move generator: rays in eight directions, knight and king targets
// as lists and as bit masks, pawn captures, bit masks of the squares between two squares, and the
// reach of a slider for every placement of the pieces on its rays. Built once at start-up so that
// the hot paths read tables instead of testing board edges or walking rays.
#pragma once

#include <cstdint>

namespace moremate {

// Directions 0..3 are the lines (rooks), 4..7 the diagonals (bishops).
enum Direction : uint8_t { kNorth, kSouth, kEast, kWest, kNorthEast, kNorthWest, kSouthEast, kSouthWest };
inline constexpr int kDirections = 8;

struct CRay {
    uint8_t length;
    uint8_t squares[7];
};

struct CJumps {
    uint8_t count;
    uint8_t squares[8];
};

// A slider's reach from one square by multiplication: the pieces on `mask` times `factor`, shifted
// down by `shift`, index the reaches of that square, which start at `offset` in the table.
struct CSliderIndex {
    uint64_t mask;  // the squares of the rays whose pieces can stop the slider, each ray's last aside
    uint64_t factor;
    uint32_t offset;
    uint8_t shift;
};
inline constexpr int kSliderReaches = 102400 + 5248;  // lines, then diagonals, of all squares

struct CGeometry {
    CRay rays[64][kDirections];
    CJumps knight[64];
    CJumps king[64];
    uint64_t rayMask[64][kDirections];  // all squares of a ray
    uint64_t diagonals[64];             // the four diagonal rays together
    uint64_t lines[64];                 // the four line rays together
    uint64_t knightMask[64];
    uint64_t kingMask[64];
    uint64_t pawnCaptures[2][64];  // squares a White [0] or Black [1] pawn on the square captures on
    uint64_t between[64][64];      // squares strictly between two squares on a line, else 0
    int8_t direction[64][64];      // direction from the first square to the second, or -1
    uint8_t castlingKeep[64];      // castling rights that survive a move from or to the square
    CSliderIndex lineIndex[64];
    CSliderIndex diagonalIndex[64];
    // The squares a slider reaches along its rays up to and including the first piece on each.
    uint64_t sliderReach[kSliderReaches];
};

extern const CGeometry& g_geometry;

constexpr bool IsDiagonal(int dir) {
    return dir >= kNorthEast;
}
constexpr uint64_t Bit(int sq) {
    return uint64_t{1} << sq;
}

}  // namespace moremate
