#include "attacks.h"

#include <cstring>

#include "occupancy.h"
#include "tables.h"

namespace moremate {
namespace {

enum class ScanMode { kAny, kAnswer, kList };

// One scan for all three questions. kAny stops at the first attacker, kAnswer at the second.
template <ScanMode kMode>
uint8_t Scan(const TChessboard& board, const uint8_t* sq, int target, uint8_t colour, TAttackerList* list) {
    uint8_t answer = kNoAttacker;
    auto found = [&](int from) -> bool {
        if constexpr (kMode == ScanMode::kList) {
            if (list->count < 16) {
                list->file[list->count] = static_cast<uint8_t>(FileOf(from));
                list->rank[list->count] = static_cast<uint8_t>(RankOf(from));
                ++list->count;
            }
        }
        answer = answer == kNoAttacker ? static_cast<uint8_t>(from) : kManyAttackers;
        if constexpr (kMode == ScanMode::kAny) return true;
        if constexpr (kMode == ScanMode::kAnswer) return answer == kManyAttackers;
        return false;
    };
    const int tf = FileOf(target), tr = RankOf(target);
    const bool white = colour == kWhite;
    const int kf = white ? board.whiteKingFile : board.blackKingFile;
    const int kr = white ? board.whiteKingRank : board.blackKingRank;
    if (sq[MakeSquare(kf, kr)] == MakePiece(colour, kKing) && (kf - tf) * (kf - tf) <= 1 &&
        (kr - tr) * (kr - tr) <= 1 && (kf != tf || kr != tr) && found(MakeSquare(kf, kr)))
        return answer;
    const int pawnRank = white ? tr - 1 : tr + 1;
    if ((white ? board.whitePawns : board.blackPawns) && pawnRank >= 0 && pawnRank < 8) {
        const Piece pawn = MakePiece(colour, kPawn);
        if (tf > 0 && sq[MakeSquare(tf - 1, pawnRank)] == pawn && found(MakeSquare(tf - 1, pawnRank)))
            return answer;
        if (tf < 7 && sq[MakeSquare(tf + 1, pawnRank)] == pawn && found(MakeSquare(tf + 1, pawnRank)))
            return answer;
    }
    if (white ? board.whiteKnights : board.blackKnights) {
        const Piece knight = MakePiece(colour, kKnight);
        const CJumps& jumps = g_geometry.knight[target];
        for (int i = 0; i < jumps.count; ++i)
            if (sq[jumps.squares[i]] == knight && found(jumps.squares[i])) return answer;
    }
    const TSliderDirections sliders = SliderDirections(board, colour);
    if (!sliders.Any()) return answer;
    const uint64_t occupied = Occupied(sq);
    for (int d = kDirections - 1; d >= 0; --d) {  // diagonals first, then lines
        if (!sliders.Has(d)) continue;
        const int nearest = FirstOnRay(occupied, target, d);
        if (nearest >= 0 && SlidesAlong(sq[nearest], colour, d) && found(nearest)) return answer;
    }
    return answer;
}

}  // namespace

uint8_t AttackerOf(const TChessboard& board, uint8_t colour, int file, int rank, TAttackerList* list) {
    const int target = MakeSquare(file, rank);
    if (list) return Scan<ScanMode::kList>(board, board.squares, target, colour, list);
    return Scan<ScanMode::kAnswer>(board, board.squares, target, colour, nullptr);
}

bool IsAttacked(const TChessboard& board, const uint8_t* squares, int sq, uint8_t byColour) {
    return Scan<ScanMode::kAny>(board, squares, sq, byColour, nullptr) != kNoAttacker;
}

bool IsAttackedByWhite(const TChessboard& board, int file, int rank) {
    return IsAttacked(board, board.squares, MakeSquare(file, rank), kWhite);
}

bool IsAttackedByBlack(const TChessboard& board, int file, int rank) {
    return IsAttacked(board, board.squares, MakeSquare(file, rank), kBlack);
}

void CountEveryPieceKind(TChessboard& board) {
    board.whiteQueens = board.whiteRooks = board.whiteBishops = board.whiteKnights = board.whitePawns = 1;
    board.blackQueens = board.blackRooks = board.blackBishops = board.blackKnights = board.blackPawns = 1;
}

int BlackKingFlightSquares(const TChessboard& board) {
    uint8_t lifted[64];
    std::memcpy(lifted, board.squares, 64);
    const int king = board.BlackKingSquare();
    lifted[king] = kEmpty;
    int flights = 0;
    const CJumps& around = g_geometry.king[king];
    for (int i = 0; i < around.count; ++i) {
        const int to = around.squares[i];
        if (ColourOf(lifted[to]) != kBlack && !IsAttacked(board, lifted, to, kWhite)) ++flights;
    }
    return flights;
}

int8_t KingAttackerField(const TChessboard& board, uint8_t colour) {
    const int king = board.KingSquare(colour);
    const uint8_t answer = Scan<ScanMode::kAnswer>(board, board.squares, king, Opponent(colour), nullptr);
    return answer == kNoAttacker ? int8_t{-1} : static_cast<int8_t>(answer);
}

}  // namespace moremate
