// Regions: the positions that a start reaches by piece moves alone (no capture, no pawn move, no
// castling). Inside a region the pawns and the material stay as they are, so its positions differ
// only in where the pieces stand and who is to move: a set small enough, in blocked positions,
// for a retrograde analysis to settle completely. This file names a region's class (the pawns and
// the pieces) and packs a position of the class into one word.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/chessboard.h"

namespace moremate {

// Kings included.
inline constexpr int kMaxRegionPieces = 8;

struct TRegionClass {
    uint64_t whitePawns = 0;
    uint64_t blackPawns = 0;
    std::array<Piece, kMaxRegionPieces> pieces{};  // the pieces' bytes in ascending order
    int count = 0;

    friend bool operator==(const TRegionClass&, const TRegionClass&) = default;
};

struct TRegionClassHash {
    size_t operator()(const TRegionClass& c) const;
};

// A position of a class: the squares of the class's pieces (ascending among pieces of one kind)
// and the side to move, packed as bit 0 = White to move, then six bits per piece.
struct TRegionPosition {
    TRegionClass regionClass;
    uint64_t key = 0;
};

// False when the board has more pieces than a region takes.
bool ReadRegionPosition(const TChessboard& board, TRegionPosition& out);
// The key after the piece on `from` moved to the empty square `to`, the other side to move.
uint64_t KeyAfterPieceMove(const TRegionClass& regionClass, uint64_t key, int from, int to);
// The board of a position of the class, its derived facts filled; no castling, no en passant.
void SetUpRegionBoard(const TRegionClass& regionClass, uint64_t key, TChessboard& board);

inline bool WhiteToMoveInKey(uint64_t key) {
    return (key & 1) != 0;
}

}  // namespace moremate
