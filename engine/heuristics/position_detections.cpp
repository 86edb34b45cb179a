#include "position_detections.h"

#include <algorithm>

#include "core/attacks.h"
#include "line_facts.h"

namespace moremate {
namespace {

// The position as Black would have it to move, White passing.
TChessboard BlackToMove(const TChessboard& board) {
    TChessboard black = board;
    black.movesLeft = static_cast<int16_t>(board.movesLeft + 1);
    return black;
}

std::vector<int> Neighbours(int square) {
    std::vector<int> squares;
    for (int sq = 0; sq < 64; ++sq)
        if (KingDistance(sq, square) == 1) squares.push_back(sq);
    return squares;
}

// The one move of a Black position, when all its legal moves are one and the same; else null.
TMove OnlyMove(const TChessboard& black) {
    TMoveList moves;
    GenerateLegalMoves(black, moves);
    if (moves.count == 0) return TMove{};
    for (const TMove& m : moves)
        if (m.from != moves.moves[0].from || m.to != moves.moves[0].to) return TMove{};
    return moves.moves[0];
}

bool FreeForWhiteKing(const TChessboard& root, int square) {
    return root.squares[square] == kEmpty && !AttackedBy(root, square, kBlack);
}

// The approach and turn-back squares: two free squares next to the white king and to each other.
bool FindTriangle(const TChessboard& root, TSeaSnake& snake) {
    const std::vector<int> around = Neighbours(root.WhiteKingSquare());
    for (const int a : around)
        for (const int b : around)
            if (a < b && KingDistance(a, b) == 1 && FreeForWhiteKing(root, a) && FreeForWhiteKing(root, b)) {
                snake.approach = static_cast<Square>(a);
                snake.turnBack = static_cast<Square>(b);
                return true;
            }
    return false;
}

std::vector<Square> ImmobileFigures(const TChessboard& black) {
    const std::array<bool, 64> mobile = MobileBlackPieces(black);
    std::vector<Square> figures;
    for (int sq = 0; sq < 64; ++sq)
        if (ColourOf(black.squares[sq]) == kBlack && IsFigure(black.squares[sq]) && !mobile[sq])
            figures.push_back(static_cast<Square>(sq));
    return figures;
}

// Black's figures cannot move: its play is the king's and the pawns', the ground of the tempo
// heuristics. In game positions free black figures make them cut far too much.
bool BlackFiguresShutIn(const TRootFacts& facts) {
    return static_cast<int>(facts.immobileBlackFigures.size()) == facts.blackFigures;
}

}  // namespace

std::array<bool, 64> MobileBlackPieces(const TChessboard& black) {
    TMoveList moves;
    GenerateLegalMoves(black, moves);
    std::array<bool, 64> mobile{};
    for (const TMove& m : moves) mobile[m.from] = true;
    return mobile;
}

void DetectPawnBlockade(const TChessboard& root, const TRootFacts& facts, THeuristicSet& set) {
    if (facts.blackPawns < 2 || !BlackFiguresShutIn(facts) || MobileBlackPawns(root) > 0) return;
    set.Add(SH_USEBLOCKBLACKPAWNSLEVEL);
    if (facts.whiteFigures == 0 && facts.blackFigures == 0 && facts.whitePawns > 0)
        set.Add(SH_ZUGZWANGTRIANGLES);
}

void DetectKeySquare(const TChessboard& root, const TRootFacts& facts, THeuristicSet& set) {
    if (facts.blackKingFlights != 0 || !BlackFiguresShutIn(facts)) return;
    int key = -1, guardedOnce = 0;
    for (const int sq : Neighbours(root.BlackKingSquare())) {
        if (ColourOf(root.squares[sq]) == kBlack) continue;
        const uint8_t guard = AttackerOf(root, kWhite, FileOf(sq), RankOf(sq));
        if (guard == kNoAttacker || guard == kManyAttackers) continue;
        key = sq;
        ++guardedOnce;
    }
    if (guardedOnce != 1) return;
    set.Add(SH_KEYSQUARE);
    set.params.keySquare = static_cast<Square>(key);
}

void DetectSeaSnake(const TChessboard& root, const TRootFacts& facts, THeuristicSet& set) {
    if (facts.blackKingFlights != 0) return;
    const TChessboard black = BlackToMove(root);
    const TMove swing = OnlyMove(black);
    if (swing.IsNull() || !IsFigure(black.squares[swing.from]) || black.squares[swing.to] != kEmpty) return;
    TChessboard swung;
    PlayMove(black, swing, swung);
    const TMove back = OnlyMove(BlackToMove(swung));
    if (back.from != swing.to || back.to != swing.from) return;
    TSeaSnake snake;
    if (!FindTriangle(root, snake)) return;
    snake.pendulum[0] = static_cast<Square>(swing.from);
    snake.pendulum[1] = static_cast<Square>(swing.to);
    set.Add(SH_SEASNAKE);
    set.params.seaSnake = snake;
}

std::vector<Square> DynamicDlfuFigures(const TChessboard& root, const TRootFacts& facts) {
    if (facts.immobileBlackFigures.size() >= 2) return {};
    const TChessboard black = BlackToMove(root);
    TMoveList moves;
    GenerateLegalMoves(black, moves);
    std::vector<Square> best;
    for (const TMove& m : moves) {
        if (m.from != black.BlackKingSquare()) continue;
        TChessboard after;
        PlayMove(black, m, after);
        std::vector<Square> walledIn = ImmobileFigures(BlackToMove(after));
        if (walledIn.size() > best.size()) best = std::move(walledIn);
    }
    if (best.size() < 2) return {};
    return best;
}

}  // namespace moremate
