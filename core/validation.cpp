#include "validation.h"

#include <bit>

#include "attacks.h"
#include "chess_exception.h"
#include "occupancy.h"

namespace moremate {
namespace {

constexpr const char* kPawnOnEdgeRank = "Pawns cannot occupy 1st nor 8th line of the chessboard.";
constexpr const char* kKingCount = "Illegal number of kings.";
constexpr const char* kBothKingsAttacked = "Both kings attacked.";
constexpr uint64_t kEdgeRanks = 0xFF000000000000FFull;

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
        if (TypeOf(p) == kPawn && (sq < 8 || RankOf(sq) == 7)) return kPawnOnEdgeRank;
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
    if (whiteKings != 1 || blackKings != 1) return kKingCount;
    b.whiteKingAttacker = KingAttackerField(b, kWhite);
    b.blackKingAttacker = KingAttackerField(b, kBlack);
    if (b.whiteKingAttacker != -1 && b.blackKingAttacker != -1) return kBothKingsAttacked;
    return nullptr;
}

// The eight bit boards of the piece bytes instead of a walk over the squares, the pawns and kings
// told from them, and the second king's attackers asked only when the first king is attacked.
const char* BrokenRuleOf(const uint8_t* squares) {
    TBoardRoom room;  // only the bit boards are filled and read: clearing the board would cost more
    const TChessboard& board = room.board;
    PieceBitPlanes(squares, room.board.pieceBits);
    const uint64_t* bits = board.pieceBits;
    const uint64_t occupied = board.Occupied();
    // Squares whose type bits (0 to 4) are exactly those of a pawn, or of a king.
    const uint64_t otherTypes = bits[2] | bits[3] | bits[4];
    const uint64_t pawns = bits[1] & ~bits[0] & ~otherTypes;
    const uint64_t kings = bits[0] & ~bits[1] & ~otherTypes & ~bits[5];
    if (pawns & occupied & kEdgeRanks) return kPawnOnEdgeRank;
    const uint64_t whiteKing = kings & bits[6] & ~bits[7];
    const uint64_t blackKing = kings & bits[7] & ~bits[6];
    if (BitCount(whiteKing) != 1 || BitCount(blackKing) != 1) return kKingCount;
    if (AttackersOf(board, std::countr_zero(whiteKing), kBlack, occupied) &&
        AttackersOf(board, std::countr_zero(blackKing), kWhite, occupied))
        return kBothKingsAttacked;
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
