#include "line_facts.h"

#include <algorithm>
#include <cstdlib>

#include "core/attacks.h"

namespace moremate {

int StepDistance(int a, int b) {
    return std::abs(FileOf(a) - FileOf(b)) + std::abs(RankOf(a) - RankOf(b));
}

bool IsFigure(Piece piece) {
    const uint8_t type = TypeOf(piece);
    return type == kQueen || type == kRook || type == kBishop || type == kKnight;
}

int CaptureSquare(const TChessboard& after) {
    const TMove& m = after.lastMove;
    const bool enPassant = TypeOf(after.squares[m.to]) == kPawn && FileOf(m.from) != FileOf(m.to) &&
                           after.previous->squares[m.to] == kEmpty;
    return enPassant ? MakeSquare(FileOf(m.to), RankOf(m.from)) : m.to;
}

Piece CapturedPiece(const TChessboard& after) {
    return after.previous->squares[CaptureSquare(after)];
}

namespace {

// The rook's squares of a castling move, or none when `m` is no castling in `after`.
bool CastlingRook(const TChessboard& after, const TMove& m, int& rookFrom, int& rookTo) {
    if (TypeOf(after.squares[m.to]) != kKing || std::abs(m.to - m.from) != 2) return false;
    const bool kingside = m.to > m.from;
    const int rank = RankOf(m.from) * 8;
    rookFrom = rank + (kingside ? 7 : 0);
    rookTo = rank + (kingside ? 5 : 3);
    return true;
}

}  // namespace

TPieceOrigin TraceOrigin(const TChessboard& at, int square) {
    TPieceOrigin origin{square, false};
    for (const TChessboard* p = &at; p->previous; p = p->previous) {
        const TMove& m = p->lastMove;
        int rookFrom, rookTo;
        if (m.IsNull()) continue;
        if (m.to == origin.square) {
            origin.square = m.from;
            origin.promoted = origin.promoted || m.PromotedType() != 0;
        } else if (CastlingRook(*p, m, rookFrom, rookTo) && rookTo == origin.square) {
            origin.square = rookFrom;
        }
    }
    return origin;
}

int HalfMovesPlayed(const TChessboard& board) {
    return board.movesAtStart - board.movesLeft;
}

int WhiteMovesLeft(const TChessboard& board) {
    return (board.movesLeft + 1) / 2;
}

int WhiteMovesPlayed(const TChessboard& board) {
    return (HalfMovesPlayed(board) + (board.movesAtStart & 1)) / 2;
}

int MobileBlackPawns(const TChessboard& board) {
    const auto white = [&board](int file, int rank) {
        return OnBoard(file, rank) && ColourOf(board.squares[MakeSquare(file, rank)]) == kWhite;
    };
    int mobile = 0;
    for (int sq = 8; sq < 64; ++sq) {
        if (board.squares[sq] != (kBlack | kPawn)) continue;
        const int file = FileOf(sq), rank = RankOf(sq);
        mobile += board.squares[sq - 8] == kEmpty || white(file - 1, rank - 1) || white(file + 1, rank - 1);
    }
    return mobile;
}

bool AttackedBy(const TChessboard& board, int square, uint8_t colour) {
    return IsAttacked(board, square, colour);
}

}  // namespace moremate
