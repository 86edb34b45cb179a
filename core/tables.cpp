#include "tables.h"

#include <bit>

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

// The reach of a slider on `sq` along directions first..last with the pieces of `occupied`.
uint64_t WalkedReach(const CGeometry& g, int sq, int first, int last, uint64_t occupied) {
    uint64_t reach = 0;
    for (int d = first; d <= last; ++d) {
        const CRay& ray = g.rays[sq][d];
        for (int i = 0; i < ray.length; ++i) {
            reach |= Bit(ray.squares[i]);
            if ((occupied >> ray.squares[i]) & 1) break;
        }
    }
    return reach;
}

// The index factors, found once by a search over random numbers with few bits set. Any factor
// will do with which the placements of the mask's pieces that share an index have the same
// reach; the core tests compare the table with the rays.
constexpr uint64_t kLineFactors[64] = {
    0x1080004008801020ull, 0x0100208010400100ull, 0x0180200110008008ull, 0x0100100008042100ull,
    0x4080028004000800ull, 0x1600040802000150ull, 0x3100640200008100ull, 0x4d00002080420100ull,
    0x0000800020804004ull, 0x8060400040201000ull, 0x0022001022004080ull, 0x0402002040100a02ull,
    0x0012001008200600ull, 0x0c09000900040002ull, 0x0214000802100401ull, 0x5406000910904204ull,
    0x2002a28000400080ull, 0x0030124000200040ull, 0x1161818020001000ull, 0x0246020008102040ull,
    0x00a1010004120800ull, 0x2004008080020004ull, 0x2400040090016802ull, 0x9201020004005081ull,
    0x1840288080084000ull, 0x0200200040005000ull, 0x0200100480200080ull, 0x0020080080801000ull,
    0x0000040080800800ull, 0x4802000200041008ull, 0x0800880c00228110ull, 0x2800004200088c01ull,
    0x0008384000800080ull, 0x0690002000400042ull, 0x0040100080802002ull, 0x0022800804801000ull,
    0x4408080080800400ull, 0x8021000249000400ull, 0x0000421114000810ull, 0x0640088062000c01ull,
    0x0102400080018020ull, 0x0440100800202004ull, 0x1400200010008080ull, 0x2328100008008080ull,
    0x0680050008010010ull, 0x2000401004080120ull, 0x2111000200010004ull, 0x0202408100420004ull,
    0x0100400080002080ull, 0x2040100020044840ull, 0x0010040800200220ull, 0x0440800800100280ull,
    0x8030040008018180ull, 0x28060118100c2600ull, 0x8100a20168100400ull, 0x090001a1040c4200ull,
    0x0201012380041441ull, 0x0100802100104001ull, 0x0000100900200041ull, 0x01c1210004100009ull,
    0x4421001002480045ull, 0x0002001413105802ull, 0x000010680a010084ull, 0x9004090400402082ull,
};
constexpr uint64_t kDiagonalFactors[64] = {
    0x10102002004a1420ull, 0x0004104086128000ull, 0x000c290212100080ull, 0x0844050600001200ull,
    0x0301104040007100ull, 0x4202080288902008ull, 0x5a25080290040400ull, 0x0002004848041000ull,
    0x0001922002440041ull, 0x8022100132008200ull, 0x0002912132060000ull, 0x9020080481092402ull,
    0x2084020210024400ull, 0x4404211002104400ull, 0x0205c10801100800ull, 0x8c68003082086000ull,
    0x20700004102a2830ull, 0xa344442001140928ull, 0x091a000108020080ull, 0x120c804802004006ull,
    0x1002004c1202000aull, 0x0401000620884004ull, 0x130c880300903100ull, 0x14b0200600840480ull,
    0x0020080004880884ull, 0x0044204004080082ull, 0x84122808040808a0ull, 0x002a080444004048ull,
    0x5810840000802000ull, 0x0090010002228800ull, 0xc024448000480400ull, 0x60084084004c1400ull,
    0x000402c80c401000ull, 0x0406102200140802ull, 0x00a0405000280120ull, 0x0014020082180080ull,
    0x5042100240240040ull, 0x0088180420111000ull, 0x061001204042020cull, 0x4800908208010100ull,
    0x421210040408a200ull, 0x1005241104002000ull, 0x10234a0086141000ull, 0x0000802018000104ull,
    0x0106102210100202ull, 0x1c10051006200101ull, 0x0202900441000080ull, 0x0804008200400a10ull,
    0x0000441004108420ull, 0x1001c1080511200cull, 0x000560841c090001ull, 0x0380240884040100ull,
    0x0100402060410002ull, 0x0400052004011011ull, 0x192128c200840210ull, 0x104802008a060201ull,
    0x4424140101301020ull, 0x260b804208014820ull, 0xa02100008400a208ull, 0xc004010000208802ull,
    0x1140242010020211ull, 0x1007005021110102ull, 0x0200200262a80104ull, 0x8102081004248020ull,
};

// Fills the square's part of the table: every subset of the mask, the empty one first, is a
// placement of the pieces that can stop the slider.
void IndexSlider(CGeometry& g, CSliderIndex& index, int sq, int first, int last, uint64_t factor,
                 uint32_t& offset) {
    index.mask = 0;
    for (int d = first; d <= last; ++d) {
        const CRay& ray = g.rays[sq][d];
        for (int i = 0; i + 1 < ray.length; ++i) index.mask |= Bit(ray.squares[i]);
    }
    index.factor = factor;
    index.shift = static_cast<uint8_t>(64 - std::popcount(index.mask));
    index.offset = offset;
    uint64_t placement = 0;
    do {
        g.sliderReach[offset + ((placement * factor) >> index.shift)] =
            WalkedReach(g, sq, first, last, placement);
        placement = (placement - index.mask) & index.mask;
    } while (placement);
    offset += uint32_t{1} << (64 - index.shift);
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
        g.castlingKeep[sq] = kAllCastlingRights;
    }
    g.castlingKeep[MakeSquare(4, 0)] &= ~(kWhiteKingside | kWhiteQueenside);
    g.castlingKeep[MakeSquare(7, 0)] &= ~kWhiteKingside;
    g.castlingKeep[MakeSquare(0, 0)] &= ~kWhiteQueenside;
    g.castlingKeep[MakeSquare(4, 7)] &= ~(kBlackKingside | kBlackQueenside);
    g.castlingKeep[MakeSquare(7, 7)] &= ~kBlackKingside;
    g.castlingKeep[MakeSquare(0, 7)] &= ~kBlackQueenside;
    uint32_t offset = 0;
    for (int sq = 0; sq < 64; ++sq)
        IndexSlider(g, g.lineIndex[sq], sq, kNorth, kWest, kLineFactors[sq], offset);
    for (int sq = 0; sq < 64; ++sq)
        IndexSlider(g, g.diagonalIndex[sq], sq, kNorthEast, kSouthWest, kDiagonalFactors[sq], offset);
}

// Built ahead of the other start-up code, which may already validate a position.
struct CBuiltGeometry : CGeometry {
    CBuiltGeometry() { Build(*this); }
};
__attribute__((init_priority(101))) const CBuiltGeometry kGeometry;

}  // namespace

const CGeometry& g_geometry = kGeometry;

}  // namespace moremate
