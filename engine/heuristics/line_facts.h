// Geometry and facts about the line of play that several rules of the special heuristics share.
// Line walks follow `previous` back to the start of the search; they run only when a rule in
// force needs them, and lines are a few dozen positions long at most.
#pragma once

#include <cstdint>

#include "core/chessboard.h"
#include "core/movegen.h"

namespace moremate {

// Squares between two squares counted along files and ranks (c2 is 3 from a1).
int StepDistance(int a, int b);
// Queen, rook, bishop or knight.
bool IsFigure(Piece piece);
// The piece that the move into `after` captured (the pawn taken en passant too), or kEmpty.
Piece CapturedPiece(const TChessboard& after);
// The square the captured piece stood on (differs from the target only for en passant).
int CaptureSquare(const TChessboard& after);

// Where the piece now on `square` of `at` stood at the start of the line, and whether it came
// into being by a promotion on the way.
struct TPieceOrigin {
    int square;
    bool promoted;
};
TPieceOrigin TraceOrigin(const TChessboard& at, int square);

int HalfMovesPlayed(const TChessboard& board);
// White moves still to come, the mating move included.
int WhiteMovesLeft(const TChessboard& board);
// White moves made since the start, counting the one that led to `board` when White just moved.
int WhiteMovesPlayed(const TChessboard& board);
// Black pawns with a push or a capture open to them (pins and en passant are not looked at).
int MobileBlackPawns(const TChessboard& board);
// Whether a piece of `colour` attacks `square` in `board`.
bool AttackedBy(const TChessboard& board, int square, uint8_t colour);
// Drops the moves for which `drop` answers true; says whether any went.
template <typename Predicate>
bool DropMoves(TMoveList& moves, Predicate drop) {
    int kept = 0;
    for (int i = 0; i < moves.count; ++i)
        if (!drop(moves.moves[i])) moves.moves[kept++] = moves.moves[i];
    const bool dropped = kept != moves.count;
    moves.count = kept;
    return dropped;
}

}  // namespace moremate
