// The initial position type check: what the problem's root position looks like (material, the
// kings' geometry, immobile black figures), and the heuristic set that pass 1 uses when the user
// has chosen none. The same facts drive the position-dependent choices of the relaxation steps.
#pragma once

#include <cstdint>
#include <vector>

#include "core/chessboard.h"
#include "heuristic_set.h"

namespace moremate {

struct TRootFacts {
    int stipulationMoves = 0;  // n of "#n"
    int whiteFigures = 0;      // pieces other than king and pawns
    int blackFigures = 0;
    int whitePawns = 0;
    int blackPawns = 0;
    int whiteMaterial = 0;  // pawn 1, knight and bishop 3, rook 5, queen 9
    int blackMaterial = 0;
    int blackQueens = 0;
    bool whiteSingleQueen = false;  // the white queen is White's only piece besides the king
    bool blackKingOnEdge = false;
    bool blackKingOnExtEdge = false;   // on the line next to the edge (and not on the edge)
    bool blackKingNearCorner = false;  // on a corner square or next to one
    int blackKingFlights = 0;
    int blackPiecesNearBlackKing = 0;          // black pieces but the king in the 7 by 7 box around it
    std::vector<Square> immobileBlackFigures;  // black figures without a legal move, square order
    int immobileBlackPawns = 0;

    int WhitePieces() const { return whiteFigures + whitePawns; }
    int BlackPieces() const { return blackFigures + blackPawns; }
    int AllPieces() const { return WhitePieces() + BlackPieces() + 2; }
};

// Facts of a root position with White to move (`movesLeft` is the stipulation in half-moves).
TRootFacts RootFacts(const TChessboard& root);

// What the position type check chose: pass 1's set and, when the black king walls in its own
// figures with a move, a request to apply DLFU dynamically (the set carries the figures' squares).
struct TPositionType {
    THeuristicSet set;
    bool pendingDynamicDlfu = false;
};

// The set chosen by the position type check: none for problems up to #6, which are searched
// without heuristics at once. Otherwise the rules, each adding to the set:
// - the black king on the edge with at most two flights: SH_KEEPKINGONTHEEDGE, in STRICT mode
//   when it has no flight at all; otherwise on the line next to the edge with at most three
//   flights: SH_KEEPKINGWITHINEXTEDGE;
// - two or more immobile black figures: SH_DONTLETFIGUREUNBLOCK on their squares (up to eight);
// - White ahead by ten pawn units or more with at least two figures: SH_DONTLOSEANYFIGURES;
// - a single white queen against at least three black pieces, all immobile: SH_SINGLEQUEENMATE;
// - no black queen (whose checks upset the three-move estimate): SH_3MOVESTOMATE;
// - the engine's own detections (position_detections.h): SH_USEBLOCKBLACKPAWNSLEVEL,
//   SH_ZUGZWANGTRIANGLES, SH_KEYSQUARE, SH_SEASNAKE and the dynamic DLFU request.
TPositionType PositionTypeCheck(const TChessboard& root);
// Whether the proof-number pass runs before the passes with heuristics: for problems beyond the
// range that is searched exhaustively at once.
bool ProofNumberPassFirst(const TChessboard& root);
// The set of PositionTypeCheck.
THeuristicSet PositionTypeHeuristics(const TChessboard& root);

}  // namespace moremate
