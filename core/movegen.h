// Legal moves, playing a move, mate and stalemate.
// Generation is check- and pin-aware: pins and check evasions are worked out once per node from
// the king outward, so only king moves and en passant captures need a board test of their own.
#pragma once

#include "chessboard.h"

namespace moremate {

class CKingFlights;

// Castling and en passant: the moves that move or take a second piece.
inline bool MovesTwoPieces(const TChessboard& board, const TMove& move) {
    const uint8_t type = TypeOf(board.squares[move.from]);
    return (type == kKing && (move.to - move.from == 2 || move.from - move.to == 2)) ||
           (type == kPawn && move.to == board.epSquare);
}

struct TMoveList {
    // In an anonymous union the entries are not zeroed when a list is made (a list lives in every
    // node of the search, and its 768 bytes of zeros cost more than generating the moves); an
    // entry comes to life when it is assigned, and only the first `count` are read.
    union {
        TMove moves[256];
    };
    int count = 0;

    TMoveList() {}

    void Add(int from, int to, uint8_t promotion = 0) {
        moves[count++] = TMove{static_cast<Square>(from), static_cast<Square>(to), promotion};
    }
    const TMove* begin() const { return moves; }
    const TMove* end() const { return moves + count; }
    bool Contains(const TMove& m) const;
};

// Every legal move of the side to move: castling while the right holds, en passant only right
// after a double step inside the line, and all four promotions.
void GenerateLegalMoves(const TChessboard& board, TMoveList& list);
// The number of legal moves, without storing them.
int CountLegalMoves(const TChessboard& board);
// The legal moves that give check: the only candidates for a mate in one. With `flights` (of
// `board`), only those that may mate: the checks whose piece lands where it attacks every free
// square next to the king (CKingFlights::Covering).
void GenerateCheckingMoves(const TChessboard& board, TMoveList& list, const CKingFlights* flights = nullptr);
// Whether `move` is a legal move of the side to move (a remembered move tried in another position).
bool IsLegalMove(const TChessboard& board, const TMove& move);
// Whether the side to move has any legal move; stops at the first one found.
bool HasLegalMove(const TChessboard& board);

// Makes `child` the position after `move` (assumed legal) in `parent`: a copy with the move
// applied, `previous` pointing at the parent and one half-move fewer left.
void PlayMove(const TChessboard& parent, const TMove& move, TChessboard& child);

bool IsMate(const TChessboard& board);
bool IsStalemate(const TChessboard& board);
// Whether the move played into `board` left the side to move in check.
inline bool GivesCheck(const TChessboard& after) {
    return after.InCheck();
}

// Castling rights the position holds now: the remembered rights whose king and rook still stand
// on their home squares.
uint8_t CastlingRights(const TChessboard& board);
// The rights a freshly set-up position starts with: kings and rooks on their home squares.
uint8_t HomeCastlingRights(const uint8_t* squares);

}  // namespace moremate
