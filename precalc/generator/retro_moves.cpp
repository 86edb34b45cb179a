#include "retro_moves.h"

namespace moremate {
namespace {

constexpr int kKingSteps[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
constexpr int kKnightJumps[8][2] = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};

void Steps(const uint8_t* squares, int from, const int (*steps)[2], int first, int last, bool slide,
           TRetroMoveList& list) {
    for (int i = first; i < last; ++i) {
        int file = FileOf(from) + steps[i][0], rank = RankOf(from) + steps[i][1];
        while (OnBoard(file, rank) && squares[MakeSquare(file, rank)] == kEmpty) {
            list.moves[list.count++] = {static_cast<Square>(from),
                                        static_cast<Square>(MakeSquare(file, rank))};
            if (!slide) break;
            file += steps[i][0];
            rank += steps[i][1];
        }
    }
}

bool EnemyPawnBeside(const uint8_t* squares, int sq, uint8_t colour) {
    const Piece enemy = MakePiece(Opponent(colour), kPawn);
    return (FileOf(sq) > 0 && squares[sq - 1] == enemy) || (FileOf(sq) < 7 && squares[sq + 1] == enemy);
}

void PawnSteps(const uint8_t* squares, int from, uint8_t colour, bool skipOpenEnPassant,
               TRetroMoveList& list) {
    const int back = colour == kWhite ? -8 : 8;
    const int rank = colour == kWhite ? RankOf(from) : 7 - RankOf(from);  // ranks from the pawn's own side
    if (rank < 2 || squares[from + back] != kEmpty) return;
    list.moves[list.count++] = {static_cast<Square>(from), static_cast<Square>(from + back)};
    if (rank != 3 || squares[from + 2 * back] != kEmpty) return;
    if (skipOpenEnPassant && EnemyPawnBeside(squares, from, colour)) return;
    list.moves[list.count++] = {static_cast<Square>(from), static_cast<Square>(from + 2 * back)};
}

}  // namespace

void GenerateRetroMoves(const uint8_t* squares, uint8_t colour, bool skipOpenEnPassant,
                        TRetroMoveList& list) {
    list.count = 0;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = squares[sq];
        if (ColourOf(p) != colour) continue;
        switch (TypeOf(p)) {
            case kKing:
                Steps(squares, sq, kKingSteps, 0, 8, false, list);
                break;
            case kKnight:
                Steps(squares, sq, kKnightJumps, 0, 8, false, list);
                break;
            case kRook:
                Steps(squares, sq, kKingSteps, 0, 4, true, list);
                break;
            case kBishop:
                Steps(squares, sq, kKingSteps, 4, 8, true, list);
                break;
            case kQueen:
                Steps(squares, sq, kKingSteps, 0, 8, true, list);
                break;
            case kPawn:
                PawnSteps(squares, sq, colour, skipOpenEnPassant, list);
                break;
            default:
                break;
        }
    }
}

}  // namespace moremate
