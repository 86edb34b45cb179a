// The piece bytes a move leaves, read off the board before the move. The registers key a position
// by its bytes alone, so a child whose result they hold needs no board of its own: playing the move
// copies and updates a whole board, this only its 64 bytes and their hash.
#pragma once

#include <cstdint>

#include "chessboard.h"

namespace moremate {

// Whether a position's piece bytes tell it whole: it holds every castling right whose king and rook
// stand at home (`castling` as remembered, `home` those of the pieces at home), and no en passant
// capture is possible.
constexpr bool RightsTellAll(uint8_t castling, uint8_t home, bool enPassant) {
    return (castling & home) == home && !enPassant;
}
bool SquaresTellAll(uint8_t castling, bool enPassant, const uint8_t* squares);

struct TSquaresAfter {
    uint32_t hash = 0;      // the hash of the bytes after the move, as the child board would keep it
    bool tellsAll = false;  // SquaresTellAll of the child
};

// Writes the 64 piece bytes after `move` (legal in `parent`) to `squares`. `home` is
// HomeCastlingRights(parent.squares), asked once for all the moves of a node: only a move from or
// to a king's or rook's home square changes it.
TSquaresAfter SquaresAfterMove(const TChessboard& parent, uint8_t home, const TMove& move, uint8_t* squares);

}  // namespace moremate
