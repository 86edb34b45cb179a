#include "movegen.h"

#include <bit>
#include <cstdlib>

#include "attacks.h"
#include "gives_check.h"
#include "king_flights.h"
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
    uint64_t own, occupied;
    uint64_t pinned = 0;
    uint64_t targets = ~0ull;  // squares a non-king move may go to (check evasion)
    bool doubleCheck = false;
};

CNodeInfo Analyse(const TChessboard& b) {
    CNodeInfo info;
    info.us = b.ToMove();
    info.them = Opponent(info.us);
    info.king = b.KingSquare(info.us);
    info.own = b.With(info.us);
    info.occupied = b.Occupied();
    info.pinned = LoneBlockers(b, info.king, info.them, info.own);
    const int8_t checker = b.KingAttacker(info.us);
    if (checker == kManyAttackers) {
        info.doubleCheck = true;
    } else if (checker >= 0) {
        info.targets = Bit(checker) | g_geometry.between[info.king][checker];
    }
    return info;
}

// The squares a piece on `from` may go to as far as a check and a pin allow: a pinned piece
// stays on the ray from its king through it (which a knight never reaches).
uint64_t Allowed(const CNodeInfo& info, int from) {
    if (!((info.pinned >> from) & 1)) return info.targets;
    return info.targets & g_geometry.rayMask[info.king][g_geometry.direction[info.king][from]];
}

// The same, and not held by an own piece: what a piece's moves are besides its own geometry.
uint64_t Open(const CNodeInfo& info, int from) {
    return ~info.own & Allowed(info, from);
}

// En passant can uncover a line through both pawns: the occupancy after the capture settles it.
bool EnPassantLegal(const TChessboard& b, const CNodeInfo& info, int from) {
    const int to = b.epSquare;
    if (to >= 64 || !((g_geometry.pawnCaptures[SideIndex(info.us)][from] >> to) & 1)) return false;
    const int victim = info.us == kWhite ? to - 8 : to + 8;
    const uint64_t after = info.occupied ^ Bit(from) ^ Bit(to) ^ Bit(victim);
    return AttackersOf(b, info.king, info.them, after) == 0;
}

// The squares of a pawn's steps and captures, en passant aside.
uint64_t PawnTargets(const TChessboard& b, const CNodeInfo& info, int from) {
    const bool white = info.us == kWhite;
    const int one = white ? from + 8 : from - 8;
    uint64_t to = g_geometry.pawnCaptures[SideIndex(info.us)][from] & b.With(info.them);
    if (b.squares[one] == kEmpty) {
        to |= Bit(one);
        const int two = white ? one + 8 : one - 8;
        if (RankOf(from) == (white ? 1 : 6) && b.squares[two] == kEmpty) to |= Bit(two);
    }
    return to & Allowed(info, from);
}

bool Promotes(int from, uint8_t us) {
    return RankOf(from) == (us == kWhite ? 6 : 1);
}

// The squares next to the king, among `wanted`, that no enemy piece attacks once the king has left
// its square; with `kFirst` only the first of them found.
template <bool kFirst = false>
uint64_t KingSteps(const TChessboard& b, const CNodeInfo& info, uint64_t wanted = ~uint64_t{0}) {
    const uint64_t lifted = info.occupied ^ Bit(info.king);
    uint64_t steps = 0;
    for (uint64_t around = g_geometry.kingMask[info.king] & ~info.own & wanted; around;
         around &= around - 1) {
        const int to = std::countr_zero(around);
        if (AttackersOf(b, to, info.them, lifted)) continue;
        steps |= Bit(to);
        if (kFirst) break;
    }
    return steps;
}

// The squares the king castles to: not out of check, nor over or onto an attacked square. The
// rights still held and the empty squares are asked first, the rook on its square and the attacks
// only then.
uint64_t CastlingTargets(const TChessboard& b, const CNodeInfo& info) {
    const uint8_t held = b.castling & (info.us == kWhite ? kWhiteKingside | kWhiteQueenside
                                                         : kBlackKingside | kBlackQueenside);
    if (!held || b.InCheck()) return 0;
    uint64_t targets = 0;
    for (const CastlingLane& lane : kLanes) {
        if (!(held & lane.right) || lane.king != info.king) continue;
        bool free = true;
        for (uint8_t s : lane.between) free = free && (s == kNoSquare || b.squares[s] == kEmpty);
        if (free && b.squares[lane.rook] == MakePiece(info.us, kRook) &&
            !IsAttacked(b, lane.passes, info.them) && !IsAttacked(b, lane.kingTo, info.them))
            targets |= Bit(lane.kingTo);
    }
    return targets;
}

// The emitters below hand the moves to a sink, which answers false to stop the generation, in
// the generator's fixed order: the search tries equal moves in the order they come.
// Both stop looking once every target is handed out: a narrowed mask has few.
template <typename Sink>
bool JumpMoves(const CJumps& jumps, int from, uint64_t targets, Sink& sink) {
    for (int i = 0; targets && i < jumps.count; ++i) {
        const int to = jumps.squares[i];
        if (!((targets >> to) & 1)) continue;
        targets ^= Bit(to);
        if (!sink(from, to, 0)) return false;
    }
    return true;
}

// Ray by ray, outward from the piece.
template <typename Sink>
bool RayMoves(int from, int firstDir, int lastDir, uint64_t targets, Sink& sink) {
    for (int d = firstDir; targets && d <= lastDir; ++d) {
        const uint64_t ray = targets & g_geometry.rayMask[from][d];
        targets ^= ray;
        for (uint64_t on = ray; on;) {
            const int to = RayRunsUp(d) ? std::countr_zero(on) : 63 - std::countl_zero(on);
            on ^= Bit(to);
            if (!sink(from, to, 0)) return false;
        }
    }
    return true;
}

// The single step, the double step, then the captures towards the a-file and the h-file.
template <typename Sink>
bool PawnMoves(const TChessboard& b, const CNodeInfo& info, int from, uint64_t targets, Sink& sink) {
    if (EnPassantLegal(b, info, from)) targets |= Bit(b.epSquare);
    const int step = info.us == kWhite ? 8 : -8;
    const bool promoting = Promotes(from, info.us);
    for (const int to : {from + step, from + 2 * step, from + step - 1, from + step + 1}) {
        if (static_cast<unsigned>(to) >= 64 || !((targets >> to) & 1)) continue;
        if (!promoting) {
            if (!sink(from, to, 0)) return false;
            continue;
        }
        for (uint8_t t : kPromotions)
            if (!sink(from, to, t)) return false;
    }
    return true;
}

// `narrow` may take squares off a piece's target mask before its moves are handed out; it must
// keep a square of a mask exactly when it keeps it of any mask. A slider's squares are narrowed
// on an empty board first: where nothing is left its attacks need no look-up at all.
template <typename Sink, typename Narrow>
bool PieceMoves(const TChessboard& b, const CNodeInfo& info, int from, Sink& sink, const Narrow& narrow) {
    auto slide = [&](int firstDir, int lastDir, uint64_t reach, auto attacks) {
        const uint64_t wanted = narrow(from, reach & Open(info, from));
        return !wanted || RayMoves(from, firstDir, lastDir, wanted & attacks(), sink);
    };
    switch (TypeOf(b.squares[from])) {
        case kPawn:
            return PawnMoves(b, info, from, narrow(from, PawnTargets(b, info, from)), sink);
        case kKnight:
            return JumpMoves(g_geometry.knight[from], from,
                             narrow(from, g_geometry.knightMask[from] & Open(info, from)), sink);
        case kBishop:
            return slide(kNorthEast, kSouthWest, g_geometry.diagonals[from],
                         [&] { return DiagonalAttacks(info.occupied, from); });
        case kRook:
            return slide(kNorth, kWest, g_geometry.lines[from],
                         [&] { return LineAttacks(info.occupied, from); });
        default:
            return slide(kNorth, kSouthWest, g_geometry.diagonals[from] | g_geometry.lines[from], [&] {
                return DiagonalAttacks(info.occupied, from) | LineAttacks(info.occupied, from);
            });
    }
}

// The counters below add up the moves of a kind of piece without handing them out: the bits of
// the pieces' target masks, each promotion counting four times.

// Pawns that are not pinned, set-wise: all their steps and captures by shifts of the pawn mask.
int CountFreePawnMoves(const TChessboard& b, const CNodeInfo& info, uint64_t pawns) {
    constexpr uint64_t kRank1 = 0xFF;
    const bool white = info.us == kWhite;
    auto forward = [white](uint64_t mask, int squares) { return white ? mask << squares : mask >> squares; };
    const uint64_t empty = ~info.occupied, enemy = b.With(info.them);
    const uint64_t single = forward(pawns, 8) & empty;
    const uint64_t twice = forward(single & (kRank1 << (white ? 16 : 40)), 8) & empty;
    const uint64_t towardsA = PawnCapturesTowardsA(pawns, info.us) & enemy;
    const uint64_t towardsH = PawnCapturesTowardsH(pawns, info.us) & enemy;
    const uint64_t lastRank = kRank1 << (white ? 56 : 0);
    int n = BitCount(twice & info.targets);
    for (const uint64_t to : {single & info.targets, towardsA & info.targets, towardsH & info.targets})
        n += BitCount(to & ~lastRank) + 4 * BitCount(to & lastRank);
    return n;
}

int CountPawnMoves(const TChessboard& b, const CNodeInfo& info) {
    const uint64_t pawns = info.own & b.With(kPawn);
    int n = CountFreePawnMoves(b, info, pawns & ~info.pinned);
    for (uint64_t pinned = pawns & info.pinned; pinned; pinned &= pinned - 1) {
        const int from = std::countr_zero(pinned);
        n += BitCount(PawnTargets(b, info, from)) * (Promotes(from, info.us) ? 4 : 1);
    }
    if (b.epSquare >= 64) return n;
    for (uint64_t takers = pawns & g_geometry.pawnCaptures[SideIndex(info.them)][b.epSquare]; takers;
         takers &= takers - 1)
        n += EnPassantLegal(b, info, std::countr_zero(takers));
    return n;
}

// Knights and the sliders, whose target masks are their reach on the board less what `Open`
// takes off. A queen is counted once as a bishop and once as a rook: the two masks share no square.
int CountPieceMoves(const TChessboard& b, const CNodeInfo& info) {
    int n = 0;
    for (uint64_t knights = info.own & b.With(kKnight); knights; knights &= knights - 1) {
        const int from = std::countr_zero(knights);
        n += BitCount(g_geometry.knightMask[from] & Open(info, from));
    }
    for (uint64_t sliders = info.own & b.With(kBishop); sliders; sliders &= sliders - 1) {
        const int from = std::countr_zero(sliders);
        n += BitCount(DiagonalAttacks(info.occupied, from) & Open(info, from));
    }
    for (uint64_t sliders = info.own & b.With(kRook); sliders; sliders &= sliders - 1) {
        const int from = std::countr_zero(sliders);
        n += BitCount(LineAttacks(info.occupied, from) & Open(info, from));
    }
    return n;
}

// King steps, castling (king side first), then the other pieces in square order. Returns false
// when the sink stopped the generation. With `kingSteps` false the king's steps are left out;
// `narrow` may thin out the other pieces' targets.
constexpr auto kEveryTarget = [](int, uint64_t targets) { return targets; };

template <typename Sink, typename Narrow = decltype(kEveryTarget)>
bool Generate(const TChessboard& b, Sink& sink, bool kingSteps = true, const Narrow& narrow = kEveryTarget) {
    const CNodeInfo info = Analyse(b);
    if (kingSteps && !JumpMoves(g_geometry.king[info.king], info.king, KingSteps(b, info), sink))
        return false;
    for (uint64_t castling = CastlingTargets(b, info); castling;) {
        const int to = 63 - std::countl_zero(castling);
        castling ^= Bit(to);
        if (!sink(info.king, to, 0)) return false;
    }
    if (info.doubleCheck) return true;
    for (uint64_t pieces = info.own & ~Bit(info.king); pieces; pieces &= pieces - 1)
        if (!PieceMoves(b, info, std::countr_zero(pieces), sink, narrow)) return false;
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

// Moves the piece byte on `from` to `to` (empty before), bit boards with it.
void Relocate(TChessboard& b, int from, int to) {
    const Piece piece = b.squares[from];
    TogglePieceBits(b, piece, Bit(from) | Bit(to));
    b.squaresHash += SquareHashChange(to, kEmpty, piece) + SquareHashChange(from, piece, kEmpty);
    b.squares[to] = piece;
    b.squares[from] = kEmpty;
}

// Takes the piece off `sq`, bit boards and material count with it.
void Remove(TChessboard& b, int sq) {
    const Piece piece = b.squares[sq];
    TogglePieceBits(b, piece, Bit(sq));
    b.squaresHash += SquareHashChange(sq, piece, kEmpty);
    --*MaterialCount(b, piece);
    b.squares[sq] = kEmpty;
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
    const CNodeInfo info = Analyse(board);
    const int king = BitCount(KingSteps(board, info)) + BitCount(CastlingTargets(board, info));
    if (info.doubleCheck) return king;
    return king + CountPawnMoves(board, info) + CountPieceMoves(board, info);
}

void GenerateCheckingMoves(const TChessboard& board, TMoveList& list, const CKingFlights* flights) {
    list.count = 0;
    const CCheckSquares checks(board);
    auto sink = [&](int from, int to, uint8_t promotion) {
        const TMove m{static_cast<Square>(from), static_cast<Square>(to), promotion};
        if (checks.Gives(board, m)) list.moves[list.count++] = m;
        return true;
    };
    // A king step can only check by uncovering a slider's line to the other king.
    auto candidates = [&](int from, uint64_t targets) {
        const uint64_t checking = checks.Candidates(board, from, targets);
        return flights ? checking & flights->Covering(board, from) : checking;
    };
    Generate(board, sink, checks.Uncovers(board.KingSquare(board.ToMove())), candidates);
}

bool IsLegalMove(const TChessboard& board, const TMove& move) {
    const Piece piece = board.squares[move.from];
    if (piece == kEmpty || ColourOf(piece) != board.ToMove()) return false;
    const CNodeInfo info = Analyse(board);
    if (move.from == info.king)
        return move.PromotedType() == 0 &&
               ((KingSteps(board, info, Bit(move.to)) | CastlingTargets(board, info)) & Bit(move.to));
    if (info.doubleCheck) return false;
    bool bFound = false;
    auto sink = [&](int from, int to, uint8_t promotion) {
        bFound = TMove{static_cast<Square>(from), static_cast<Square>(to), promotion} == move;
        return !bFound;
    };
    PieceMoves(board, info, move.from, sink,
               [&move](int, uint64_t targets) { return targets & Bit(move.to); });
    return bFound;
}

bool HasLegalMove(const TChessboard& board) {
    const CNodeInfo info = Analyse(board);
    if (KingSteps<true>(board, info)) return true;
    if (info.doubleCheck) return false;
    return CastlingTargets(board, info) || CountPawnMoves(board, info) || CountPieceMoves(board, info);
}

void PlayMove(const TChessboard& parent, const TMove& move, TChessboard& child) {
    child = parent;
    child.previous = &parent;
    child.lastMove = move;
    child.movesLeft = static_cast<int16_t>(parent.movesLeft - 1);
    child.epSquare = kNoSquare;
    const Piece piece = child.squares[move.from];
    const uint8_t us = ColourOf(piece);
    if (child.squares[move.to] != kEmpty) Remove(child, move.to);
    Relocate(child, move.from, move.to);
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
                Relocate(child, rank + (kingside ? 7 : 0), rank + (kingside ? 5 : 3));
            }
            break;
        case kPawn:
            if (move.to == parent.epSquare) {
                Remove(child, us == kWhite ? move.to - 8 : move.to + 8);
            } else if (std::abs(move.to - move.from) == 16) {
                child.epSquare = static_cast<uint8_t>((move.from + move.to) / 2);
            }
            if (move.PromotedType()) {
                const Piece promoted = static_cast<Piece>(us | move.PromotedType());
                TogglePieceBits(child, piece ^ promoted, Bit(move.to));
                child.squaresHash += SquareHashChange(move.to, piece, promoted);
                child.squares[move.to] = promoted;
                --*MaterialCount(child, piece);
                ++*MaterialCount(child, promoted);
            }
            break;
        default:
            break;
    }
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
