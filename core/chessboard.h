// TChessboard: one position of a search line. A mailbox of 64 piece bytes plus derived facts
// (bit boards of the pieces, king squares, checkers, material) so that the search never scans the
// board for them. A child position is a plain copy of its parent with the move applied: no heap,
// no undo.
#pragma once

#include <bit>
#include <cstdint>
#include <vector>

#include "squares_hash.h"
#include "types.h"

namespace moremate {

struct TSolvingRun;  // shared data of a solving run (registers, options, counters); owned elsewhere
struct TProblemRoot;

struct TChessboard {
    uint8_t squares[64] = {};
    // pieceBits[k]: the squares whose piece byte has bit k set, so k = 0..4 the type bits (kings,
    // pawns, bishops and queens, rooks and queens, knights), 6 White, 7 Black. Kept with `squares`
    // by PlayMove and filled by the validation.
    uint64_t pieceBits[8] = {};
    // SquaresHash(squares), the position's place in the registers: kept with the bit boards.
    uint32_t squaresHash = 0;
    TSolvingRun* run = nullptr;
    const TChessboard* previous = nullptr;
    const TProblemRoot* problem = nullptr;
    TMove lastMove{};
    int16_t movesLeft = 1;
    int16_t movesAtStart = 1;
    uint8_t whiteKingFile = 0, whiteKingRank = 0, blackKingFile = 0, blackKingRank = 0;
    // Square of the piece checking that king, 64 for a double check, -1 when not attacked.
    int8_t whiteKingAttacker = -1, blackKingAttacker = -1;
    uint8_t whiteQueens = 0, blackQueens = 0, whiteRooks = 0, blackRooks = 0, whiteBishops = 0,
            blackBishops = 0, whiteKnights = 0, blackKnights = 0, whitePawns = 0, blackPawns = 0;
    // Squares of the first White pieces met in square order, while White's material is indexable.
    uint8_t whiteRookSquares[2] = {kNoSquare, kNoSquare};
    uint8_t whiteBishopSquares[2] = {kNoSquare, kNoSquare};
    uint8_t whiteKnightSquares[2] = {kNoSquare, kNoSquare};
    uint8_t whiteQueenSquare[1] = {kNoSquare};
    bool whiteMaterialIndexable = true;

    // Auxiliary state read by the special heuristics: a two-bit square colour, flag bits cleared
    // by every validation, and state words reset when a position is newly read or transformed.
    uint8_t auxSquareColour = 0;
    uint16_t auxBits = 0;
    uint32_t auxWords[2] = {};

    // Castling rights still held (CastlingRight bits), kept up to date by every move. Together
    // with the king and rook standing on their squares they give the rights of the position.
    uint8_t castling = 0;
    // Square passed over by a pawn's double step just played inside the line, else kNoSquare.
    // A position read from FEN or a problem's start never has one.
    uint8_t epSquare = kNoSquare;

    uint8_t ToMove() const { return SideToMove(movesLeft); }
    bool WhiteToMove() const { return (movesLeft & 1) != 0; }
    int WhiteKingSquare() const { return MakeSquare(whiteKingFile, whiteKingRank); }
    int BlackKingSquare() const { return MakeSquare(blackKingFile, blackKingRank); }
    int KingSquare(uint8_t colour) const { return colour == kWhite ? WhiteKingSquare() : BlackKingSquare(); }
    int8_t KingAttacker(uint8_t colour) const {
        return colour == kWhite ? whiteKingAttacker : blackKingAttacker;
    }
    bool InCheck() const { return KingAttacker(ToMove()) != -1; }

    // The squares whose piece byte has `pieceBit` (one type bit, kWhite or kBlack): With(kRook) are
    // the rooks and queens of both sides.
    uint64_t With(uint8_t pieceBit) const { return pieceBits[std::countr_zero(pieceBit)]; }
    uint64_t Occupied() const { return With(kWhite) | With(kBlack); }
};

// Room for a board that PlayMove fills, made without clearing it first: where a board is made at
// every node, clearing its bytes costs about as much as the move.
struct TBoardRoom {
    TBoardRoom() {}
    union {
        TChessboard board;
    };
};

// Adds `piece` to the bit boards on the squares of `mask`, or takes it off them.
inline void TogglePieceBits(TChessboard& board, Piece piece, uint64_t mask) {
    for (unsigned bits = piece; bits; bits &= bits - 1) board.pieceBits[std::countr_zero(bits)] ^= mask;
}

// The problem's root data: the starting position and the moves stated as already played.
struct TProblemRoot {
    TChessboard start;
    std::vector<TMove> playedMoves;
};

}  // namespace moremate
