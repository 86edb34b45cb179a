#include "tables.h"

#include "types.h"

namespace moremate {
namespace {

constexpr int kFileStep[kDirections] = {0, 0, 1, -1, 1, -1, 1, -1};
constexpr int kRankStep[kDirections] = {1, -1, 0, 0, 1, 1, -1, -1};

uint64_t AddJumps(CJumps& jumps, int sq, const int (*offsets)[2], int n) {
    jumps.count = 0;
    uint64_t mask = 0;
    for (int i = 0; i < n; ++i) {
        int f = FileOf(sq) + offsets[i][0], r = RankOf(sq) + offsets[i][1];
        if (!OnBoard(f, r)) continue;
        jumps.squares[jumps.count++] = static_cast<uint8_t>(MakeSquare(f, r));
        mask |= Bit(MakeSquare(f, r));
    }
    return mask;
}

// The squares a pawn on `sq` captures on when it moves `rankStep` ranks forward.
uint64_t PawnCaptures(int sq, int rankStep) {
    uint64_t mask = 0;
    for (int df = -1; df <= 1; df += 2)
        if (OnBoard(FileOf(sq) + df, RankOf(sq) + rankStep))
            mask |= Bit(MakeSquare(FileOf(sq) + df, RankOf(sq) + rankStep));
    return mask;
}

void Build(CGeometry& g) {
    static constexpr int kKnightOffsets[8][2] = {{1, 2},   {2, 1},   {2, -1}, {1, -2},
                                                 {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
    static constexpr int kKingOffsets[8][2] = {{0, 1},  {1, 1},   {1, 0},  {1, -1},
                                               {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}};
    for (int sq = 0; sq < 64; ++sq) {
        for (int to = 0; to < 64; ++to) g.direction[sq][to] = -1;
        for (int d = 0; d < kDirections; ++d) {
            CRay& ray = g.rays[sq][d];
            ray.length = 0;
            uint64_t seen = 0;
            for (int f = FileOf(sq) + kFileStep[d], r = RankOf(sq) + kRankStep[d]; OnBoard(f, r);
                 f += kFileStep[d], r += kRankStep[d]) {
                int to = MakeSquare(f, r);
                ray.squares[ray.length++] = static_cast<uint8_t>(to);
                g.between[sq][to] = seen;
                g.direction[sq][to] = static_cast<int8_t>(d);
                seen |= Bit(to);
            }
            g.rayMask[sq][d] = seen;
            (IsDiagonal(d) ? g.diagonals[sq] : g.lines[sq]) |= seen;
        }
        g.knightMask[sq] = AddJumps(g.knight[sq], sq, kKnightOffsets, 8);
        g.kingMask[sq] = AddJumps(g.king[sq], sq, kKingOffsets, 8);
        g.pawnCaptures[0][sq] = PawnCaptures(sq, 1);
        g.pawnCaptures[1][sq] = PawnCaptures(sq, -1);
        g.castlingKeep[sq] = 0xF;
    }
    g.castlingKeep[MakeSquare(4, 0)] &= ~(kWhiteKingside | kWhiteQueenside);
    g.castlingKeep[MakeSquare(7, 0)] &= ~kWhiteKingside;
    g.castlingKeep[MakeSquare(0, 0)] &= ~kWhiteQueenside;
    g.castlingKeep[MakeSquare(4, 7)] &= ~(kBlackKingside | kBlackQueenside);
    g.castlingKeep[MakeSquare(7, 7)] &= ~kBlackKingside;
    g.castlingKeep[MakeSquare(0, 7)] &= ~kBlackQueenside;
}

// Built ahead of the other start-up code, which may already validate a position.
struct CBuiltGeometry : CGeometry {
    CBuiltGeometry() { Build(*this); }
};
__attribute__((init_priority(101))) const CBuiltGeometry kGeometry;

}  // namespace

const CGeometry& g_geometry = kGeometry;

}  // namespace moremate
