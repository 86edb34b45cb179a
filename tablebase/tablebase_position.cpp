#include "tablebase_position.h"

#include <algorithm>

#include "core/chessboard_id.h"
#include "core/fen.h"
#include "core/movegen.h"

namespace moremate {

int PieceCount(const TChessboard& board) {
    return static_cast<int>(std::count_if(std::begin(board.squares), std::end(board.squares),
                                          [](uint8_t piece) { return piece != 0; }));
}

std::string WhyNotAskable(const TChessboard& board) {
    const int pieces = PieceCount(board);
    if (pieces < kMinTablebasePieces || pieces > kMaxTablebasePieces)
        return "The tablebase holds positions of 3 to 7 pieces, this one has " + std::to_string(pieces);
    if (CastlingRights(board) != 0) return "The tablebase holds no positions with castling rights";
    if (board.epSquare != kNoSquare)
        return "The tablebase is not asked about positions with an en passant square";
    return {};
}

std::string TablebaseFen(const TChessboard& board) {
    return WriteFenPlacement(board) + (board.WhiteToMove() ? " w - - 0 1" : " b - - 0 1");
}

std::string CacheName(const TChessboard& board) {
    return ToAlphanum6(EncodeId(board.squares)) + (board.WhiteToMove() ? "" : "_b");
}

}  // namespace moremate
