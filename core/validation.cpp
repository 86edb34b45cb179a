#include "validation.h"

#include <bit>

#include "attacks.h"
#include "chess_exception.h"

namespace moremate {
namespace {

void StoreWhiteKing(TChessboard& b, int sq) {
    b.whiteKingFile = static_cast<uint8_t>(FileOf(sq));
    b.whiteKingRank = static_cast<uint8_t>(RankOf(sq));
}

void StoreBlackKing(TChessboard& b, int sq) {
    b.blackKingFile = static_cast<uint8_t>(FileOf(sq));
    b.blackKingRank = static_cast<uint8_t>(RankOf(sq));
}

// Stores the square of a White piece in the next free slot while White's material stays
// indexable; the piece is always counted.
void CountIndexable(TChessboard& b, uint8_t& count, uint8_t* slots, int slotCount, int sq) {
    if (b.whiteMaterialIndexable) {
        if (count >= slotCount)
            b.whiteMaterialIndexable = false;
        else
            slots[count] = static_cast<uint8_t>(sq);
    }
    ++count;
}

void CountWhiteBishop(TChessboard& b, int sq) {
    if (b.whiteMaterialIndexable &&
        (b.whiteBishops >= 2 ||
         (b.whiteBishops == 1 && SquareColour(b.whiteBishopSquares[0]) == SquareColour(sq)))) {
        b.whiteMaterialIndexable = false;
    }
    if (b.whiteMaterialIndexable) b.whiteBishopSquares[b.whiteBishops] = static_cast<uint8_t>(sq);
    ++b.whiteBishops;
}

void ResetDerived(TChessboard& b) {
    b.whiteQueens = b.blackQueens = b.whiteRooks = b.blackRooks = b.whiteBishops = b.blackBishops = 0;
    b.whiteKnights = b.blackKnights = b.whitePawns = b.blackPawns = 0;
    for (uint8_t* slots : {b.whiteRookSquares, b.whiteBishopSquares, b.whiteKnightSquares})
        slots[0] = slots[1] = kNoSquare;
    b.whiteQueenSquare[0] = kNoSquare;
    b.whiteMaterialIndexable = true;
}

}  // namespace

const char* BrokenRule(TChessboard& b) {
    ResetDerived(b);
    DerivePieceBits(b);
    int whiteKings = 0, blackKings = 0;
    // Only the occupied squares are visited, in board order.
    for (uint64_t occupied = b.Occupied(); occupied; occupied &= occupied - 1) {
        const int sq = std::countr_zero(occupied);
        const Piece p = b.squares[sq];
        if (TypeOf(p) == kPawn && (sq < 8 || RankOf(sq) == 7))
            return "Pawns cannot occupy 1st nor 8th line of the chessboard.";
        switch (p) {
            case kWhite | kKing:
                StoreWhiteKing(b, sq);
                ++whiteKings;
                break;
            case kBlack | kKing:
                StoreBlackKing(b, sq);
                ++blackKings;
                break;
            case kWhite | kPawn:
                ++b.whitePawns;
                break;
            case kWhite | kBishop:
                CountWhiteBishop(b, sq);
                break;
            case kWhite | kRook:
                CountIndexable(b, b.whiteRooks, b.whiteRookSquares, 2, sq);
                break;
            case kWhite | kKnight:
                CountIndexable(b, b.whiteKnights, b.whiteKnightSquares, 2, sq);
                break;
            case kWhite | kQueen:
                CountIndexable(b, b.whiteQueens, b.whiteQueenSquare, 1, sq);
                break;
            case kBlack | kPawn:
                ++b.blackPawns;
                break;
            case kBlack | kBishop:
                ++b.blackBishops;
                break;
            case kBlack | kRook:
                ++b.blackRooks;
                break;
            case kBlack | kKnight:
                ++b.blackKnights;
                break;
            case kBlack | kQueen:
                ++b.blackQueens;
                break;
            default:
                break;
        }
    }
    if (whiteKings != 1 || blackKings != 1) return "Illegal number of kings.";
    b.whiteKingAttacker = KingAttackerField(b, kWhite);
    b.blackKingAttacker = KingAttackerField(b, kBlack);
    if (b.whiteKingAttacker != -1 && b.blackKingAttacker != -1) return "Both kings attacked.";
    return nullptr;
}

namespace {

void CheckRules(TChessboard& b) {
    if (const char* rule = BrokenRule(b)) throw ChessException(rule);
}

}  // namespace

void Validate(TChessboard& board, bool resetAuxWords) {
    CheckRules(board);
    board.auxBits = 0;
    if (resetAuxWords) {
        board.auxSquareColour = 0;
        board.auxWords[0] = board.auxWords[1] = 0;
    }
}

void ValidateOnLine(TChessboard& board) {
    CheckRules(board);
    if (board.previous == nullptr) board.auxBits = 0;
}

void PrepareForSolving(TChessboard& board, int halfMoves, bool resetAuxWords) {
    board.movesLeft = board.movesAtStart = static_cast<int16_t>(halfMoves);
    board.epSquare = kNoSquare;
    if (resetAuxWords)
        Validate(board, true);
    else
        ValidateOnLine(board);
    if ((halfMoves & 1) && board.blackKingAttacker != -1)
        throw ChessException("Black king cannot be checked in the mate task starting postition.");
    if (!(halfMoves & 1) && board.whiteKingAttacker != -1)
        throw ChessException("White king cannot be checked in the mate-defence task starting postition.");
}

}  // namespace moremate
