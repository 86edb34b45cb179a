#include "movegen.h"

#include <cstdlib>
#include <cstring>

#include "attacks.h"
#include "gives_check.h"
#include "occupancy.h"
#include "tables.h"

namespace moremate {
namespace {

constexpr uint8_t kPromotions[4] = {kQueen, kRook, kBishop, kKnight};

struct CastlingLane {
    uint8_t right, king, rook, kingTo, passes;  // passes: the square the king crosses
    uint8_t between[3];                         // squares that must be empty (kNoSquare fills)
};

constexpr CastlingLane kLanes[4] = {
    {kWhiteKingside, 4, 7, 6, 5, {5, 6, kNoSquare}},
    {kWhiteQueenside, 4, 0, 2, 3, {1, 2, 3}},
    {kBlackKingside, 60, 63, 62, 61, {61, 62, kNoSquare}},
    {kBlackQueenside, 60, 56, 58, 59, {57, 58, 59}},
};

// What the generator works out once per node.
struct CNodeInfo {
    uint8_t us, them;
    int king;
    uint64_t pinned = 0;
    int8_t pinDir[64];         // valid only for pinned squares
    uint64_t targets = ~0ull;  // squares a non-king move may go to (check evasion)
    bool doubleCheck = false;
};

void FindPins(const TChessboard& b, CNodeInfo& info) {
    const TSliderDirections sliders = SliderDirections(b, info.them);
    if (!sliders.Any()) return;
    const uint64_t occupied = Occupied(b.squares);
    for (int d = 0; d < kDirections; ++d) {
        if (!sliders.Has(d)) continue;
        const int own = FirstOnRay(occupied, info.king, d);
        if (own < 0 || ColourOf(b.squares[own]) != info.us) continue;
        const int behind = FirstOnRay(occupied, own, d);
        if (behind >= 0 && SlidesAlong(b.squares[behind], info.them, d)) {
            info.pinned |= Bit(own);
            info.pinDir[own] = static_cast<int8_t>(d);
        }
    }
}

void Analyse(const TChessboard& b, CNodeInfo& info) {
    info.us = b.ToMove();
    info.them = Opponent(info.us);
    info.king = b.KingSquare(info.us);
    FindPins(b, info);
    const int8_t checker = b.KingAttacker(info.us);
    if (checker == kManyAttackers) {
        info.doubleCheck = true;
    } else if (checker >= 0) {
        info.targets = Bit(checker) | g_geometry.between[info.king][checker];
    }
}

bool MayGo(const CNodeInfo& info, int from, int to) {
    if (!((info.targets >> to) & 1)) return false;
    if (!((info.pinned >> from) & 1)) return true;
    return (g_geometry.rayMask[info.king][info.pinDir[from]] >> to) & 1;
}

// En passant can uncover a line through both pawns: settle it by playing the move.
bool EnPassantLegal(const TChessboard& b, const CNodeInfo& info, int from, int to) {
    uint8_t after[64];
    std::memcpy(after, b.squares, 64);
    after[to] = after[from];
    after[from] = kEmpty;
    after[info.us == kWhite ? to - 8 : to + 8] = kEmpty;
    return !IsAttacked(b, after, info.king, info.them);
}

// The generators below hand each move to a sink that answers false to stop the generation.
template <typename Sink>
bool PawnMoves(const TChessboard& b, const CNodeInfo& info, int from, Sink& sink) {
    const bool white = info.us == kWhite;
    const int step = white ? 8 : -8;
    const int rank = RankOf(from);
    const bool promoting = rank == (white ? 6 : 1);
    auto emit = [&](int to) {
        if (!MayGo(info, from, to)) return true;
        if (!promoting) return sink(from, to, 0);
        for (uint8_t t : kPromotions)
            if (!sink(from, to, t)) return false;
        return true;
    };
    const int one = from + step;
    if (b.squares[one] == kEmpty) {
        if (!emit(one)) return false;
        const int two = one + step;
        if (rank == (white ? 1 : 6) && b.squares[two] == kEmpty && !emit(two)) return false;
    }
    const int file = FileOf(from);
    for (int df = -1; df <= 1; df += 2) {
        if (file + df < 0 || file + df > 7) continue;
        const int to = one + df;
        if (ColourOf(b.squares[to]) == info.them) {
            if (!emit(to)) return false;
        } else if (to == b.epSquare && EnPassantLegal(b, info, from, to) && !sink(from, to, 0)) {
            return false;
        }
    }
    return true;
}

// With `steps` false only castling is generated (the steps cannot matter to the caller).
template <typename Sink>
bool KingMoves(const TChessboard& b, const CNodeInfo& info, Sink& sink, bool steps) {
    uint8_t lifted[64];
    std::memcpy(lifted, b.squares, 64);
    lifted[info.king] = kEmpty;
    const CJumps& around = g_geometry.king[info.king];
    for (int i = 0; steps && i < around.count; ++i) {
        const int to = around.squares[i];
        if (ColourOf(b.squares[to]) != info.us && !IsAttacked(b, lifted, to, info.them) &&
            !sink(info.king, to, 0))
            return false;
    }
    if (b.InCheck()) return true;
    const uint8_t rights = CastlingRights(b);
    for (const CastlingLane& lane : kLanes) {
        if (!(rights & lane.right) || lane.king != info.king) continue;
        bool free = true;
        for (uint8_t s : lane.between) free = free && (s == kNoSquare || b.squares[s] == kEmpty);
        if (free && !IsAttacked(b, b.squares, lane.passes, info.them) &&
            !IsAttacked(b, b.squares, lane.kingTo, info.them) && !sink(info.king, lane.kingTo, 0))
            return false;
    }
    return true;
}

template <typename Sink>
bool SliderMoves(const TChessboard& b, const CNodeInfo& info, int from, int firstDir, int lastDir,
                 Sink& sink) {
    for (int d = firstDir; d <= lastDir; ++d) {
        const CRay& ray = g_geometry.rays[from][d];
        for (int i = 0; i < ray.length; ++i) {
            const int to = ray.squares[i];
            const Piece p = b.squares[to];
            if (ColourOf(p) == info.us) break;
            if (MayGo(info, from, to) && !sink(from, to, 0)) return false;
            if (p != kEmpty) break;
        }
    }
    return true;
}

template <typename Sink>
bool KnightMoves(const TChessboard& b, const CNodeInfo& info, int from, Sink& sink) {
    if ((info.pinned >> from) & 1) return true;  // a pinned knight never moves
    const CJumps& jumps = g_geometry.knight[from];
    for (int i = 0; i < jumps.count; ++i) {
        const int to = jumps.squares[i];
        if (ColourOf(b.squares[to]) != info.us && ((info.targets >> to) & 1) && !sink(from, to, 0))
            return false;
    }
    return true;
}

template <typename Sink>
bool PieceMoves(const TChessboard& b, const CNodeInfo& info, int from, Sink& sink) {
    switch (TypeOf(b.squares[from])) {
        case kPawn:
            return PawnMoves(b, info, from, sink);
        case kKnight:
            return KnightMoves(b, info, from, sink);
        case kBishop:
            return SliderMoves(b, info, from, kNorthEast, kSouthWest, sink);
        case kRook:
            return SliderMoves(b, info, from, kNorth, kWest, sink);
        case kQueen:
            return SliderMoves(b, info, from, kNorth, kSouthWest, sink);
        default:
            return true;
    }
}

// Returns false when the sink stopped the generation.
template <typename Sink>
bool Generate(const TChessboard& b, Sink& sink, bool kingSteps = true) {
    CNodeInfo info;
    Analyse(b, info);
    if (!KingMoves(b, info, sink, kingSteps)) return false;
    if (info.doubleCheck) return true;
    for (int from = 0; from < 64; ++from)
        if (ColourOf(b.squares[from]) == info.us && !PieceMoves(b, info, from, sink)) return false;
    return true;
}

uint8_t* MaterialCount(TChessboard& b, Piece p) {
    const bool white = ColourOf(p) == kWhite;
    switch (TypeOf(p)) {
        case kQueen:
            return white ? &b.whiteQueens : &b.blackQueens;
        case kRook:
            return white ? &b.whiteRooks : &b.blackRooks;
        case kBishop:
            return white ? &b.whiteBishops : &b.blackBishops;
        case kKnight:
            return white ? &b.whiteKnights : &b.blackKnights;
        case kPawn:
            return white ? &b.whitePawns : &b.blackPawns;
        default:
            return nullptr;
    }
}

}  // namespace

bool TMoveList::Contains(const TMove& m) const {
    for (const TMove& x : *this)
        if (x == m) return true;
    return false;
}

void GenerateLegalMoves(const TChessboard& board, TMoveList& list) {
    list.count = 0;
    auto sink = [&list](int from, int to, uint8_t promotion) {
        list.Add(from, to, promotion);
        return true;
    };
    Generate(board, sink);
}

int CountLegalMoves(const TChessboard& board) {
    int n = 0;
    auto sink = [&n](int, int, uint8_t) {
        ++n;
        return true;
    };
    Generate(board, sink);
    return n;
}

void GenerateCheckingMoves(const TChessboard& board, TMoveList& list) {
    list.count = 0;
    const CCheckSquares checks(board);
    auto sink = [&](int from, int to, uint8_t promotion) {
        const TMove m{static_cast<Square>(from), static_cast<Square>(to), promotion};
        if (checks.Gives(board, m)) list.moves[list.count++] = m;
        return true;
    };
    // A king step can only check by uncovering a line to the other king, so it needs that line.
    const int ours = board.KingSquare(board.ToMove()), theirs = board.KingSquare(Opponent(board.ToMove()));
    Generate(board, sink, g_geometry.direction[theirs][ours] >= 0);
}

bool HasLegalMove(const TChessboard& board) {
    auto stopAtFirst = [](int, int, uint8_t) { return false; };
    return !Generate(board, stopAtFirst);
}

void PlayMove(const TChessboard& parent, const TMove& move, TChessboard& child) {
    child = parent;
    child.previous = &parent;
    child.lastMove = move;
    child.movesLeft = static_cast<int16_t>(parent.movesLeft - 1);
    child.epSquare = kNoSquare;
    uint8_t* sq = child.squares;
    const Piece piece = sq[move.from];
    const uint8_t us = ColourOf(piece);
    Piece captured = sq[move.to];
    sq[move.from] = kEmpty;
    sq[move.to] = move.PromotedType() ? static_cast<Piece>(us | move.PromotedType()) : piece;
    switch (TypeOf(piece)) {
        case kKing:
            if (us == kWhite) {
                child.whiteKingFile = static_cast<uint8_t>(FileOf(move.to));
                child.whiteKingRank = static_cast<uint8_t>(RankOf(move.to));
            } else {
                child.blackKingFile = static_cast<uint8_t>(FileOf(move.to));
                child.blackKingRank = static_cast<uint8_t>(RankOf(move.to));
            }
            if (std::abs(move.to - move.from) == 2) {  // castling: the rook jumps over
                const int rank = RankOf(move.from) * 8;
                const bool kingside = move.to > move.from;
                sq[rank + (kingside ? 5 : 3)] = sq[rank + (kingside ? 7 : 0)];
                sq[rank + (kingside ? 7 : 0)] = kEmpty;
            }
            break;
        case kPawn:
            if (move.to == parent.epSquare && captured == kEmpty) {
                const int victim = us == kWhite ? move.to - 8 : move.to + 8;
                captured = sq[victim];
                sq[victim] = kEmpty;
            } else if (std::abs(move.to - move.from) == 16) {
                child.epSquare = static_cast<uint8_t>((move.from + move.to) / 2);
            }
            if (move.PromotedType()) {
                --*MaterialCount(child, piece);
                ++*MaterialCount(child, sq[move.to]);
            }
            break;
        default:
            break;
    }
    if (captured != kEmpty) --*MaterialCount(child, captured);
    child.castling &= g_geometry.castlingKeep[move.from] & g_geometry.castlingKeep[move.to];
    const uint8_t them = Opponent(us);
    if (us == kWhite) {
        child.whiteKingAttacker = -1;
        child.blackKingAttacker = KingAttackerField(child, them);
    } else {
        child.blackKingAttacker = -1;
        child.whiteKingAttacker = KingAttackerField(child, them);
    }
}

bool IsMate(const TChessboard& board) {
    return board.InCheck() && !HasLegalMove(board);
}

bool IsStalemate(const TChessboard& board) {
    return !board.InCheck() && !HasLegalMove(board);
}

uint8_t HomeCastlingRights(const uint8_t* squares) {
    uint8_t rights = 0;
    for (const CastlingLane& lane : kLanes) {
        const uint8_t colour = lane.king < 8 ? kWhite : kBlack;
        if (squares[lane.king] == MakePiece(colour, kKing) && squares[lane.rook] == MakePiece(colour, kRook))
            rights |= lane.right;
    }
    return rights;
}

uint8_t CastlingRights(const TChessboard& board) {
    return board.castling & HomeCastlingRights(board.squares);
}

}  // namespace moremate
