#include "tables.h"

#include "types.h"

namespace moremate {
namespace {

constexpr int kFileStep[kDirections] = {0, 0, 1, -1, 1, -1, 1, -1};
constexpr int kRankStep[kDirections] = {1, -1, 0, 0, 1, 1, -1, -1};

void AddJumps(CJumps& jumps, int sq, const int (*offsets)[2], int n) {
    jumps.count = 0;
    for (int i = 0; i < n; ++i) {
        int f = FileOf(sq) + offsets[i][0], r = RankOf(sq) + offsets[i][1];
        if (OnBoard(f, r)) jumps.squares[jumps.count++] = static_cast<uint8_t>(MakeSquare(f, r));
    }
}

CGeometry Build() {
    static constexpr int kKnightOffsets[8][2] = {{1, 2},   {2, 1},   {2, -1}, {1, -2},
                                                 {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
    static constexpr int kKingOffsets[8][2] = {{0, 1},  {1, 1},   {1, 0},  {1, -1},
                                               {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}};
    CGeometry g{};
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
        }
        AddJumps(g.knight[sq], sq, kKnightOffsets, 8);
        AddJumps(g.king[sq], sq, kKingOffsets, 8);
        g.castlingKeep[sq] = 0xF;
    }
    g.castlingKeep[MakeSquare(4, 0)] &= ~(kWhiteKingside | kWhiteQueenside);
    g.castlingKeep[MakeSquare(7, 0)] &= ~kWhiteKingside;
    g.castlingKeep[MakeSquare(0, 0)] &= ~kWhiteQueenside;
    g.castlingKeep[MakeSquare(4, 7)] &= ~(kBlackKingside | kBlackQueenside);
    g.castlingKeep[MakeSquare(7, 7)] &= ~kBlackKingside;
    g.castlingKeep[MakeSquare(0, 7)] &= ~kBlackQueenside;
    return g;
}

const CGeometry kGeometry = Build();

}  // namespace

const CGeometry& g_geometry = kGeometry;

}  // namespace moremate
