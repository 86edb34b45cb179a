#include "position_type.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "core/attacks.h"
#include "core/movegen.h"
#include "position_detections.h"

namespace moremate {
namespace {

void CountMaterial(const TChessboard& root, TRootFacts& facts) {
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = root.squares[sq];
        if (p == kEmpty || TypeOf(p) == kKing) continue;
        const bool white = ColourOf(p) == kWhite;
        const bool pawn = TypeOf(p) == kPawn;
        (white ? (pawn ? facts.whitePawns : facts.whiteFigures)
               : (pawn ? facts.blackPawns : facts.blackFigures))++;
        (white ? facts.whiteMaterial : facts.blackMaterial) += MaterialValue(TypeOf(p));
        if (!white && TypeOf(p) == kQueen) ++facts.blackQueens;
        if (white && TypeOf(p) == kQueen) facts.whiteSingleQueen = true;
    }
    facts.whiteSingleQueen = facts.whiteSingleQueen && facts.WhitePieces() == 1;
}

int EdgeDistance(int file, int rank) {
    return std::min({file, rank, 7 - file, 7 - rank});
}

void BlackKingGeometry(const TChessboard& root, TRootFacts& facts) {
    const int file = root.blackKingFile, rank = root.blackKingRank;
    facts.blackKingOnEdge = EdgeDistance(file, rank) == 0;
    facts.blackKingOnExtEdge = EdgeDistance(file, rank) == 1;
    facts.blackKingNearCorner = std::min(file, 7 - file) <= 1 && std::min(rank, 7 - rank) <= 1;
    facts.blackKingFlights = BlackKingFlightSquares(root);
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = root.squares[sq];
        if (ColourOf(p) == kBlack && TypeOf(p) != kKing && std::abs(FileOf(sq) - file) <= 3 &&
            std::abs(RankOf(sq) - rank) <= 3)
            ++facts.blackPiecesNearBlackKing;
    }
}

// Black's pieces that have no legal move in the root position with Black to move.
void ImmobileBlackPieces(const TChessboard& root, TRootFacts& facts) {
    TChessboard black = root;
    black.movesLeft = static_cast<int16_t>(root.movesLeft + 1);
    const std::array<bool, 64> mobile = MobileBlackPieces(black);
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = root.squares[sq];
        if (ColourOf(p) != kBlack || TypeOf(p) == kKing || mobile[sq]) continue;
        if (TypeOf(p) == kPawn)
            ++facts.immobileBlackPawns;
        else
            facts.immobileBlackFigures.push_back(static_cast<Square>(sq));
    }
}

void AddEdgeRule(const TRootFacts& facts, THeuristicSet& set) {
    if (facts.blackKingOnEdge && facts.blackKingFlights <= 2) {
        set.Add(SH_KEEPKINGONTHEEDGE);
        if (facts.blackKingFlights == 0) set.params.kingMode = TKingMode::Strict;
    } else if (facts.blackKingOnExtEdge && facts.blackKingFlights <= 3) {
        set.Add(SH_KEEPKINGWITHINEXTEDGE);
    }
}

void AddBlockedFigures(const TRootFacts& facts, THeuristicSet& set) {
    if (facts.immobileBlackFigures.size() < 2) return;
    set.Add(SH_DONTLETFIGUREUNBLOCK);
    const size_t count = std::min<size_t>(facts.immobileBlackFigures.size(), 8);
    std::copy_n(facts.immobileBlackFigures.begin(), count, set.params.blockedFigures);
    set.params.blockedCount = static_cast<uint8_t>(count);
}

// The figures the black king walls in go into the DLFU squares without the bit: the relaxation
// adds SH_DONTLETFIGUREUNBLOCK at its next step when the request is granted.
void AddDynamicDlfu(const TChessboard& root, const TRootFacts& facts, TPositionType& type) {
    if (type.set.Has(SH_DONTLETFIGUREUNBLOCK)) return;
    const std::vector<Square> figures = DynamicDlfuFigures(root, facts);
    if (figures.empty()) return;
    const size_t count = std::min<size_t>(figures.size(), 8);
    std::copy_n(figures.begin(), count, type.set.params.blockedFigures);
    type.set.params.blockedCount = static_cast<uint8_t>(count);
    type.pendingDynamicDlfu = true;
}

}  // namespace

TRootFacts RootFacts(const TChessboard& root) {
    TRootFacts facts;
    facts.stipulationMoves = (root.movesLeft + 1) / 2;
    CountMaterial(root, facts);
    BlackKingGeometry(root, facts);
    ImmobileBlackPieces(root, facts);
    return facts;
}

// Up to this length the whole tree is searched faster than heuristic passes and pass 2 together:
// doubtful lines are not kept as proofs, so each relaxed pass searches much of it again.
constexpr int kShortestMoremover = 7;

TPositionType PositionTypeCheck(const TChessboard& root) {
    const TRootFacts facts = RootFacts(root);
    TPositionType type;
    THeuristicSet& set = type.set;
    if (facts.stipulationMoves < kShortestMoremover) return type;
    AddEdgeRule(facts, set);
    AddBlockedFigures(facts, set);
    if (facts.whiteMaterial >= facts.blackMaterial + 10 && facts.whiteFigures >= 2)
        set.Add(SH_DONTLOSEANYFIGURES);
    const int immobileBlack = static_cast<int>(facts.immobileBlackFigures.size()) + facts.immobileBlackPawns;
    if (facts.whiteSingleQueen && facts.BlackPieces() >= 3 && immobileBlack == facts.BlackPieces())
        set.Add(SH_SINGLEQUEENMATE);
    if (facts.blackQueens == 0) set.Add(SH_3MOVESTOMATE);
    DetectPawnBlockade(root, facts, set);
    DetectKeySquare(root, facts, set);
    DetectSeaSnake(root, facts, set);
    AddDynamicDlfu(root, facts, type);
    return type;
}

bool ProofNumberPassFirst(const TChessboard& root) {
    return (root.movesLeft + 1) / 2 >= kShortestMoremover;
}

THeuristicSet PositionTypeHeuristics(const TChessboard& root) {
    return PositionTypeCheck(root).set;
}

}  // namespace moremate
