#include "squares_after.h"

#include <cstdlib>
#include <cstring>

#include "movegen.h"
#include "squares_hash.h"
#include "tables.h"

namespace moremate {
namespace {

// Whether a pawn of `taker`'s colour stands beside `square` on its rank.
bool PawnBeside(const uint8_t* squares, int square, uint8_t taker) {
    const Piece pawn = MakePiece(taker, kPawn);
    const int file = FileOf(square);
    return (file > 0 && squares[square - 1] == pawn) || (file < 7 && squares[square + 1] == pawn);
}

}  // namespace

bool SquaresTellAll(uint8_t castling, bool enPassant, const uint8_t* squares) {
    return RightsTellAll(castling, HomeCastlingRights(squares), enPassant);
}

TSquaresAfter SquaresAfterMove(const TChessboard& parent, uint8_t home, const TMove& move, uint8_t* squares) {
    std::memcpy(squares, parent.squares, 64);
    uint32_t hash = parent.squaresHash;
    const auto put = [&](int square, uint8_t piece) {
        hash += SquareHashChange(square, squares[square], piece);
        squares[square] = piece;
    };
    const Piece piece = parent.squares[move.from];
    const uint8_t us = ColourOf(piece);
    put(move.from, kEmpty);
    put(move.to, move.PromotedType() ? static_cast<Piece>(us | move.PromotedType()) : piece);
    bool enPassant = false;
    if (TypeOf(piece) == kKing && std::abs(move.to - move.from) == 2) {  // castling: the rook jumps over
        const int rank = RankOf(move.from) * 8;
        const bool kingside = move.to > move.from;
        const int rookFrom = rank + (kingside ? 7 : 0);
        put(rank + (kingside ? 5 : 3), squares[rookFrom]);
        put(rookFrom, kEmpty);
    } else if (TypeOf(piece) == kPawn && move.to == parent.epSquare) {
        put(us == kWhite ? move.to - 8 : move.to + 8, kEmpty);
    } else if (TypeOf(piece) == kPawn && std::abs(move.to - move.from) == 16) {
        enPassant = PawnBeside(squares, move.to, Opponent(us));
    }
    const uint8_t keep = g_geometry.castlingKeep[move.from] & g_geometry.castlingKeep[move.to];
    const uint8_t castling = parent.castling & keep;
    if (keep != kAllCastlingRights) home = HomeCastlingRights(squares);  // a king's or rook's home square
    return {hash, RightsTellAll(castling, home, enPassant)};
}

}  // namespace moremate
