#include <cstdlib>

#include "notation.h"
#include "pieces.h"

namespace moremate {

std::string SquareText(int sq) {
    return {static_cast<char>('a' + FileOf(sq)), static_cast<char>('1' + RankOf(sq))};
}

std::string MoveToText(const TMove& move, Piece moving, bool captures) {
    if (move.IsNull()) return "-";
    if (TypeOf(moving) == kKing && std::abs(FileOf(move.to) - FileOf(move.from)) >= 2)
        return FileOf(move.to) == 6 ? "0-0" : "0-0-0";
    std::string text = SquareText(move.from) + (captures ? ':' : '-') + SquareText(move.to);
    if (move.PromotedType()) return text + TypeLetter(move.PromotedType());
    if (TypeOf(moving) != kPawn) return TypeLetter(TypeOf(moving)) + text;
    return text;
}

std::string MoveToText(const TChessboard& board, const TMove& move) {
    const Piece moving = board.squares[move.from];
    const bool enPassant = TypeOf(moving) == kPawn && move.to == board.epSquare;
    return MoveToText(move, moving, board.squares[move.to] != kEmpty || enPassant);
}

}  // namespace moremate
