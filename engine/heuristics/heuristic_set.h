// A heuristic set: the mask of special heuristics in force and the parameters they read. The set
// is copied with every pass and every sub-problem; it holds no pointers and no heap storage.
#pragma once

#include <cstdint>

#include "core/types.h"
#include "heuristic_names.h"

namespace moremate {

// King mode of SH_KEEPKINGONTHEEDGE: off (plain edge), STRICT ("the black king may not move unless
// mated at once") and ALMOST_STRICT (the same with exceptions allowed).
enum class TKingMode : uint8_t { Off, Strict, AlmostStrict };

// Modes of SH_FINDFORCEDMATE, stored as the dialog's radio buttons number them.
enum TFindForcedMateMode : uint8_t {
    kFfmCheckOnly = 2,
    kFfmThreat1 = 3,      // "#1"
    kFfmThreat1Plus = 4,  // "#1+"
    kFfmThreat2 = 5,      // "#2"
    kFfmThreat2Plus = 6,  // "#2+"
    kFfmThreat3 = 7,
    kFfmThreat4 = 8,
    kFfmThreat5 = 9,
};

// Colour mode of SH_ONECOLORPLAYPOSSIBLE.
enum class TColourMode : uint8_t {
    None = 0,
    WhiteSquaresOnly = 1,
    BlackSquaresOnly = 2,
    SeparatedBlackBishop = 3
};

// Dynamic relaxation of the edge and ext.edge heuristics.
struct TEdgeRelaxation {
    bool onAdvancedPawn = false;   // "A"
    uint8_t figuresToCapture = 0;  // "C<n>", 0 = off
    bool alsoPawns = false;        // without it "f" follows the count
    bool deferCheck = false;       // "D<n>,M<m>"
    uint8_t deferMoves = 0;
    uint8_t deferSecondCount = 0;  // printed after ",M"
    bool extEdgeOnly = false;      // "applicable for ext.edge version ONLY"
    bool skipDeferIfNoBalanceChange = false;
    bool automatic = false;  // "let program automatically dyn.relax heuristics"
    friend bool operator==(const TEdgeRelaxation&, const TEdgeRelaxation&) = default;
};

struct TSeaSnake {
    Square approach = kNoSquare;
    Square turnBack = kNoSquare;
    Square pendulum[2] = {kNoSquare, kNoSquare};
    uint8_t onlyAfterMove = 0;  // 0 = from the start
    friend bool operator==(const TSeaSnake&, const TSeaSnake&) = default;
};

// Levels of "-WithOtherHeuristics" (0: off).
inline constexpr uint8_t kFfmOthersPartially = 1;  // not on the first moves
inline constexpr uint8_t kFfmOthersFully = 2;

struct TFindForcedMate {
    uint8_t mode = kFfmThreat1;         // TFindForcedMateMode
    uint8_t initialMode = kFfmThreat1;  // the mode the relaxation steps start from
    uint8_t withOtherHeuristics = 0;    // "-WithOtherHeuristics": 0 off, 1 partially, 2 fully
    bool preliminary = false;           // "-Preliminary"
    bool custom = false;                // "-Custom": run the whole FFM cycle twice
    uint8_t relaxations = 2;            // mode steps the passes may take
    bool twoCycles = false;             // "run the whole FFM cycle twice"
    bool captureNearBlackKing = false;  // "add captures of fig.in bl.king neighborh.in FFM #2/#2+..."
    friend bool operator==(const TFindForcedMate&, const TFindForcedMate&) = default;
};

struct THeuristicParameters {
    TKingMode kingMode = TKingMode::Off;
    bool inclCorner = false;  // b2, b7, g2, g7 count as edge squares
    // "strict" of the edge / ext.edge pair: with SH_KEEPKINGWITHINEXTEDGE, "move unless on the edge"
    // (the king keeps to the second line, and each of its moves goes onto the edge line).
    bool edgeStrict = false;
    TEdgeRelaxation edgeRelaxation;
    int8_t cornerDistance = 0;      // > 0: squares ("3S"); <= 0: |value| king moves ("2M")
    bool surroundedStrict = false;  // SH_ASSERTBLACKKINGSURROUNDED "strict (max 2 free sqrs)"
    uint8_t loseFiguresPawns =
        0;  // SH_DONTLOSEANYFIGURES: 0 none, 1 "incl.pawns", 2+ "incl.pawnsBeforePromo"
    Square mainDiagonalFigure = kNoSquare;  // black piece that may not leave the main diagonal
    bool promotedStrict = false;            // "strict (fewer exceptions)" of the promoted-piece rules
    Square blockedFigures[8] = {kNoSquare, kNoSquare, kNoSquare, kNoSquare,
                                kNoSquare, kNoSquare, kNoSquare, kNoSquare};  // DLFU
    uint8_t blockedCount = 0;
    bool dlfuEff = false;     // "EFF"
    bool dlfuDynamic = true;  // "let program apply this heuristics dynamically"
    Square keyWhiteFigure = kNoSquare;
    Square keySquare = kNoSquare;
    uint8_t keyLine = 0xFF;  // file 0..7
    uint8_t keyDiagonal[2] = {0xFF, 0xFF};
    TColourMode colourMode = TColourMode::None;
    uint8_t zugzwangSquares[64] = {};  // the position to return to (piece bytes), when set
    bool zugzwangSet = false;
    uint8_t zugzwangAfterMove = 0;
    bool skipPassive = false;  // SH_SKIPWORSTWHITEMOVES "SkipPassive"
    TSeaSnake seaSnake;
    TFindForcedMate ffm;
    uint8_t quickMateDepth = 0;  // "LFQMDepth(#n)": 0 = the engine's default
    friend bool operator==(const THeuristicParameters&, const THeuristicParameters&) = default;
};

struct THeuristicSet {
    uint32_t mask = 0;
    THeuristicParameters params;

    bool Has(uint32_t bit) const { return (mask & bit) != 0; }
    void Add(uint32_t bit) { mask |= bit; }
    void Remove(uint32_t bit) { mask &= ~bit; }
    friend bool operator==(const THeuristicSet&, const THeuristicSet&) = default;
};

}  // namespace moremate
