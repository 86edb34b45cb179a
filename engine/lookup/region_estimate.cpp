#include <bit>

#include "region_analysis.h"

namespace moremate {
namespace {

constexpr int kKingSteps[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
constexpr int kKnightSteps[8][2] = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};

uint64_t Bit(int file, int rank) {
    return 1ULL << MakeSquare(file, rank);
}

// Squares a pawn of `colour` attacks, for the whole set of its pawns.
uint64_t PawnAttacks(uint64_t pawns, uint8_t colour) {
    constexpr uint64_t kNotA = 0xfefefefefefefefeULL, kNotH = 0x7f7f7f7f7f7f7f7fULL;
    if (colour == kWhite) return ((pawns << 9) & kNotA) | ((pawns << 7) & kNotH);
    return ((pawns >> 7) & kNotA) | ((pawns >> 9) & kNotH);
}

// The squares a piece reaches from `sq` in one move when only `blocked` squares stop it.
uint64_t Steps(Piece piece, int sq, uint64_t blocked) {
    const uint8_t type = TypeOf(piece);
    const int file = FileOf(sq), rank = RankOf(sq);
    uint64_t to = 0;
    if (type == kKing || type == kKnight) {
        for (const auto& s : type == kKing ? kKingSteps : kKnightSteps)
            if (OnBoard(file + s[0], rank + s[1])) to |= Bit(file + s[0], rank + s[1]);
        return to & ~blocked;
    }
    for (const auto& s : kKingSteps) {
        const bool diagonal = s[0] != 0 && s[1] != 0;
        if (!(type & (diagonal ? kBishop : kRook))) continue;
        for (int f = file + s[0], r = rank + s[1]; OnBoard(f, r) && !(blocked & Bit(f, r));
             f += s[0], r += s[1])
            to |= Bit(f, r);
    }
    return to;
}

// Every square the piece could ever stand on while the pawns stay where they are.
int ReachableSquares(Piece piece, int sq, uint64_t blocked) {
    uint64_t reached = 1ULL << sq, frontier = reached;
    while (frontier) {
        uint64_t next = 0;
        for (uint64_t f = frontier; f; f &= f - 1) next |= Steps(piece, std::countr_zero(f), blocked);
        frontier = next & ~reached;
        reached |= frontier;
    }
    return std::popcount(reached);
}

// Pawns of `colour` that can step forward or take something.
int MobilePawns(const TChessboard& board, uint8_t colour) {
    const uint64_t pawns = board.With(kPawn) & board.With(colour);
    const uint64_t empty = ~board.Occupied(), enemies = board.With(Opponent(colour));
    int mobile = 0;
    for (uint64_t p = pawns; p; p &= p - 1) {
        const uint64_t pawn = p & -p;
        const uint64_t step = colour == kWhite ? pawn << 8 : pawn >> 8;
        if ((step & empty) || (PawnAttacks(pawn, colour) & enemies)) ++mobile;
    }
    return mobile;
}

}  // namespace

bool PawnsLocked(const TChessboard& board) {
    constexpr int kMinPawns = 6, kMaxMobilePawns = 2;
    const int pawns = std::popcount(board.With(kPawn));
    return pawns >= kMinPawns && MobilePawns(board, kWhite) + MobilePawns(board, kBlack) <= kMaxMobilePawns;
}

uint64_t EstimatedRegionSize(const TChessboard& board) {
    const uint64_t pawns = board.With(kPawn);
    const uint64_t whitePawns = pawns & board.With(kWhite), blackPawns = pawns & board.With(kBlack);
    uint64_t size = 2;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = board.squares[sq];
        if (p == kEmpty || TypeOf(p) == kPawn) continue;
        uint64_t blocked = pawns;
        if (TypeOf(p) == kKing)
            blocked |= PawnAttacks(ColourOf(p) == kWhite ? blackPawns : whitePawns, Opponent(ColourOf(p)));
        size *= static_cast<uint64_t>(ReachableSquares(p, sq, blocked));
        if (size > (1ULL << 40)) return size;
    }
    return size;
}

}  // namespace moremate
