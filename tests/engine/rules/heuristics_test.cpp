#include "engine/rules/special_heuristics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "engine/search/mate_search.h"
#include "engine/state/search_result.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using TTune = std::function<void(THeuristicParameters&)>;

THeuristicSet With(uint32_t bits, TTune tune = nullptr) {
    THeuristicSet set;
    set.mask = bits;
    if (tune) tune(set.params);
    return set;
}

// A line from a FEN and the bit that the heuristics must answer after its last move.
struct TLineCase {
    const char* why;
    THeuristicSet set;
    const char* fen;
    const char* moves;  // separated by blanks
    uint32_t expected;
    int halfMoves = 9;
};

void ExpectVerdicts(const std::vector<TLineCase>& cases) {
    for (const TLineCase& c : cases) {
        const TChessboard start = test::Problem(c.fen, c.halfMoves);
        test::TestLine line(start);
        line.PlayLine(c.moves);
        CSpecialHeuristics heuristics(c.set, start);
        EXPECT_EQ(heuristics.Check(line.Now()), c.expected) << c.why;
    }
}

constexpr const char* kCornerKing = "k7/8/8/8/8/8/8/4K2R w";

TEST(SpecialHeuristics, KingZones) {
    const THeuristicSet edge = With(SH_KEEPKINGONTHEEDGE);
    const THeuristicSet corner = With(SH_KEEPKINGONTHEEDGE, [](auto& p) { p.inclCorner = true; });
    const THeuristicSet ext = With(SH_KEEPKINGWITHINEXTEDGE);
    const THeuristicSet extStrict = With(SH_KEEPKINGWITHINEXTEDGE, [](auto& p) { p.edgeStrict = true; });
    const char* second = "8/8/8/8/8/1k6/8/4K2R w";
    const char* onEdge = "8/8/8/8/8/k7/8/4K2R w";
    ExpectVerdicts({
        {"edge: the king steps off the edge", edge, kCornerKing, "Rh1-h2 Ka8-b7", SH_KEEPKINGONTHEEDGE},
        {"edge: a step along the edge", edge, kCornerKing, "Rh1-h2 Ka8-b8", 0},
        {"edge incl.corner: b7 counts as edge", corner, kCornerKing, "Rh1-h2 Ka8-b7", 0},
        {"ext.edge: third line", ext, second, "Rh1-h2 Kb3-c4", SH_KEEPKINGWITHINEXTEDGE},
        {"ext.edge: second line", ext, second, "Rh1-h2 Kb3-b4", 0},
        {"ext.edge strict: moves only onto the edge", extStrict, second, "Rh1-h2 Kb3-b4",
         SH_KEEPKINGWITHINEXTEDGE},
        {"ext.edge strict: onto the edge", extStrict, second, "Rh1-h2 Kb3-a4", 0},
        {"ext.edge strict: staying put", extStrict, second, "Rh1-h3", 0},
        {"ext.edge strict: along the edge", extStrict, onEdge, "Rh1-h2 Ka3-a4", 0},
        {"ext.edge strict: back off the edge", extStrict, onEdge, "Rh1-h2 Ka3-b4", SH_KEEPKINGWITHINEXTEDGE},
    });
}

TEST(SpecialHeuristics, KingMayNotMove) {
    const THeuristicSet strict = With(SH_KEEPKINGONTHEEDGE, [](auto& p) { p.kingMode = TKingMode::Strict; });
    const THeuristicSet almost =
        With(SH_KEEPKINGONTHEEDGE, [](auto& p) { p.kingMode = TKingMode::AlmostStrict; });
    const char* pawnFree = "k7/8/8/6p1/8/8/6P1/1R2K3 w";
    const char* pawnBlocks = "k7/8/8/8/6p1/8/6P1/1R2K3 w";
    ExpectVerdicts({
        {"strict: a king move along the edge", strict, kCornerKing, "Rh1-h2 Ka8-b8", SH_KEEPKINGONTHEEDGE},
        {"strict: pawn moves are free", strict, "k7/7p/8/8/8/8/8/4K2R w", "Rh1-g1 h7-h6", 0},
        {"almost strict: the first step away", almost, kCornerKing, "Rh1-h2 Ka8-b8", 0},
        {"almost strict: and straight back", almost, kCornerKing, "Rh1-h2 Ka8-b8 Rh2-h3 Kb8-a8", 0},
        {"almost strict: wandering on", almost, kCornerKing, "Rh1-h2 Ka8-b8 Rh2-h3 Kb8-c8",
         SH_KEEPKINGONTHEEDGE},
        {"almost strict: a pawn move that ends blocked", almost, pawnBlocks, "Rb1-c1 Ka8-a7 Ke1-d1 g4-g3", 0},
        {"almost strict: a free pawn move while away", almost, pawnFree, "Rb1-c1 Ka8-a7 Ke1-d1 g5-g4",
         SH_KEEPKINGONTHEEDGE},
    });
}

TEST(SpecialHeuristics, CornerDistanceInSquaresAndMoves) {
    const auto corner = [](int8_t d) {
        return With(SH_KEEPKINGNEARCORNER, [d](auto& p) { p.cornerDistance = d; });
    };
    const char* fen = "8/8/8/8/8/8/2k5/4K2R w";
    ExpectVerdicts({
        {"c3 is 4 squares from a1", corner(3), fen, "Rh1-h8 Kc2-c3", SH_KEEPKINGNEARCORNER},
        {"b2 is 2 squares from a1", corner(3), fen, "Rh1-h8 Kc2-b2", 0},
        {"c3 is 2 king moves from a1", corner(-2), fen, "Rh1-h8 Kc2-c3", 0},
        {"1M: c3 too far", corner(-1), fen, "Rh1-h8 Kc2-c3", SH_KEEPKINGNEARCORNER},
    });
}

TEST(SpecialHeuristics, EdgeRelaxation) {
    const THeuristicSet capture =
        With(SH_KEEPKINGONTHEEDGE, [](auto& p) { p.edgeRelaxation.figuresToCapture = 1; });
    const THeuristicSet pawn =
        With(SH_KEEPKINGONTHEEDGE, [](auto& p) { p.edgeRelaxation.onAdvancedPawn = true; });
    const THeuristicSet pawnExtOnly = With(SH_KEEPKINGONTHEEDGE, [](auto& p) {
        p.edgeRelaxation.onAdvancedPawn = true;
        p.edgeRelaxation.extEdgeOnly = true;
    });
    const auto defer = [](bool skip) {
        return With(SH_KEEPKINGONTHEEDGE, [skip](auto& p) {
            p.edgeRelaxation = {.figuresToCapture = 1,
                                .deferCheck = true,
                                .deferMoves = 1,
                                .skipDeferIfNoBalanceChange = skip};
        });
    };
    const char* knight = "k7/1n6/8/8/8/8/8/1R2K3 w";
    const char* advanced = "k7/8/6P1/8/8/8/8/4K2R w";
    const char* knightFar = "k7/8/8/8/8/8/8/n3K2R w";
    ExpectVerdicts({
        {"a captured figure relaxes the edge", capture, knight, "Rb1:b7 Ka8:b7", 0},
        {"without relaxation", With(SH_KEEPKINGONTHEEDGE), knight, "Rb1:b7 Ka8:b7", SH_KEEPKINGONTHEEDGE},
        {"an advanced pawn relaxes the edge", pawn, advanced, "Rh1-h2 Ka8-b7", 0},
        {"relaxation for ext.edge only", pawnExtOnly, advanced, "Rh1-h2 Ka8-b7", SH_KEEPKINGONTHEEDGE},
        {"deferred: just left", defer(false), knightFar, "Rh1-h2 Ka8-b7", 0},
        {"deferred: one White move later", defer(false), knightFar, "Rh1-h2 Ka8-b7 Rh2-h3", 0},
        {"deferred: time is up", defer(false), knightFar, "Rh1-h2 Ka8-b7 Rh2-h3 Kb7-c7",
         SH_KEEPKINGONTHEEDGE},
        {"no defer when nothing is left to capture", defer(true), kCornerKing, "Rh1-h2 Ka8-b7",
         SH_KEEPKINGONTHEEDGE},
        {"defer while a figure can still be captured", defer(true), knightFar, "Rh1-h2 Ka8-b7", 0},
    });
}

TEST(SpecialHeuristics, WhiteMaterial) {
    const auto lose = [](uint8_t n) {
        return With(SH_DONTLOSEANYFIGURES, [n](auto& p) { p.loseFiguresPawns = n; });
    };
    const THeuristicSet save = With(SH_SAVEQUEENROOK);
    const char* pawnLow = "k7/8/8/8/8/8/r1P5/4K3 w";
    const char* pawnHigh = "k7/r1P5/8/8/8/8/8/4K3 w";
    ExpectVerdicts({
        {"a figure lost", lose(0), "k7/8/8/8/8/8/r7/N3K3 w", "Ke1-f1 Ra2:a1", SH_DONTLOSEANYFIGURES},
        {"pawns do not count", lose(0), pawnLow, "Ke1-f1 Ra2:c2", 0},
        {"incl.pawns", lose(1), pawnLow, "Ke1-f1 Ra2:c2", SH_DONTLOSEANYFIGURES},
        {"before promotion: a pawn far back", lose(2), pawnLow, "Ke1-f1 Ra2:c2", 0},
        {"before promotion: a pawn on the seventh", lose(2), pawnHigh, "Ke1-f1 Ra7:c7",
         SH_DONTLOSEANYFIGURES},
        {"the last rook lost", save, "k7/8/8/8/8/8/r7/R3K3 w", "Ke1-f1 Ra2:a1", SH_SAVEQUEENROOK},
        {"another rook left", save, "k7/8/8/8/8/8/r7/R3K2R w", "Ke1-f1 Ra2:a1", 0},
        {"a promotion is coming", save, "k7/2P5/8/8/8/8/r7/R3K3 w", "Ke1-f1 Ra2:a1", 0},
    });
}

TEST(SpecialHeuristics, CaptureKnightInTime) {
    const THeuristicSet knight = With(SH_CAPTUREKNIGHT);
    const char* fen = "k7/8/8/3n4/8/8/8/K5R1 w";
    ExpectVerdicts({
        {"no move left for the capture", knight, fen, "Rg1-g2 Nd5-e3", SH_CAPTUREKNIGHT, 3},
        {"capture and mate left, knight not attacked", knight, fen, "Rg1-g2 Nd5-e3", SH_CAPTUREKNIGHT, 5},
        {"capture and mate left, knight attacked", knight, fen, "Rg1-g3 Nd5-e3", 0, 5},
        {"time to spare", knight, fen, "Rg1-g2 Nd5-e3", 0, 7},
    });
}

TEST(SpecialHeuristics, BlockedFigures) {
    const auto dlfu = [](bool eff) {
        return With(SH_DONTLETFIGUREUNBLOCK,
                    [eff](auto& p) { p.blockedFigures[0] = 57, p.blockedCount = 1, p.dlfuEff = eff; });
    };  // b8
    const char* fen = "kr6/8/8/8/8/8/8/4K2R w";
    ExpectVerdicts({
        {"one square is allowed", dlfu(false), fen, "Rh1-h2 Rb8-c8", 0},
        {"farther is not", dlfu(false), fen, "Rh1-h2 Rb8-b5", SH_DONTLETFIGUREUNBLOCK},
        {"step by step is traced", dlfu(false), fen, "Rh1-h2 Rb8-c8 Rh2-h3 Rc8-d8", SH_DONTLETFIGUREUNBLOCK},
        {"into en prise", dlfu(false), fen, "Rh1-h5 Rb8-b5", 0},
        {"EFF: no en prise exception", dlfu(true), fen, "Rh1-h5 Rb8-b5", SH_DONTLETFIGUREUNBLOCK},
        {"unlisted figures are free", With(SH_DONTLETFIGUREUNBLOCK), fen, "Rh1-h2 Rb8-b5", 0},
    });
}

TEST(SpecialHeuristics, BlackQueenAndPromotedFigures) {
    const THeuristicSet twice = With(SH_DONTLETBLACKQUEENCHECKTWICE);
    const THeuristicSet queen = With(SH_DONTLETPROMOTEDQUEENMOVE);
    const THeuristicSet figure = With(SH_DONTLETPROMOTEDFIGUREMOVE);
    const char* promote = "k7/8/8/8/8/8/p7/4K2R b";
    ExpectVerdicts({
        {"first check", twice, "k6q/8/8/8/8/8/8/4K3 w", "Ke1-d2 Qh8-h6", 0},
        {"second check", twice, "k6q/8/8/8/8/8/8/4K3 w", "Ke1-d2 Qh8-h6 Kd2-c2 Qh6-h7",
         SH_DONTLETBLACKQUEENCHECKTWICE},
        {"a check into en prise does not count", twice, "k6q/8/1R6/8/8/8/8/4K3 w",
         "Ke1-d2 Qh8-h6 Kd2-c2 Qh6-h7", 0},
        {"a promoted queen left free", queen, promote, "a2-a1Q Ke1-e2", SH_DONTLETPROMOTEDQUEENMOVE, 10},
        {"a promoted knight is no queen", queen, promote, "a2-a1N Ke1-e2", 0, 10},
        {"any promoted figure", figure, promote, "a2-a1N Ke1-e2", SH_DONTLETPROMOTEDFIGUREMOVE, 10},
        {"a queen from the start", queen, "k7/8/8/8/8/8/q7/4K2R w", "Rh1-h2", 0},
    });
}

TEST(SpecialHeuristics, KingsOfMiniatures) {
    const THeuristicSet near = With(SH_AREKINGSNEAR);
    const THeuristicSet recede = With(SH_DONTRECEDEBLACKKING);
    const THeuristicSet surround = With(SH_ASSERTBLACKKINGSURROUNDED);
    const THeuristicSet surroundStrict =
        With(SH_ASSERTBLACKKINGSURROUNDED, [](auto& p) { p.surroundedStrict = true; });
    const THeuristicSet three = With(SH_3MOVESTOMATE);
    const char* open = "8/8/8/3k4/8/8/8/K5R1 w";
    ExpectVerdicts({
        {"kings too far apart for a mate in two", near, "7k/8/8/8/8/8/8/K5R1 w", "Rg1-g2", SH_AREKINGSNEAR,
         3},
        {"time enough to come close", near, "7k/8/8/8/8/8/8/K5R1 w", "Rg1-g2", 0, 15},
        {"the white king steps back", recede, "7k/8/8/8/8/8/1K6/6R1 w", "Kb2-a1", SH_DONTRECEDEBLACKKING},
        {"the white king closes in", recede, "7k/8/8/8/8/8/1K6/6R1 w", "Kb2-c3", 0},
        {"a king in the open", surround, open, "Ka1-b1", SH_ASSERTBLACKKINGSURROUNDED},
        {"checks are exempt", surround, open, "Rg1-d1", 0},
        {"three free squares", surround, "7k/8/8/8/8/8/8/K1R5 w", "Ka1-b1", 0},
        {"three free squares, strict", surroundStrict, "7k/8/8/8/8/8/8/K1R5 w", "Ka1-b1",
         SH_ASSERTBLACKKINGSURROUNDED},
        {"three moves left, king in the open", three, open, "Rg1-g2 Kd5-d4", SH_3MOVESTOMATE, 7},
        {"four moves left", three, open, "Rg1-g2 Kd5-d4", 0},
        {"enough force", three, "8/8/8/3k4/8/8/8/KQ4R1 w", "Rg1-g2 Kd5-d4", 0, 7},
    });
}

TEST(SpecialHeuristics, LinesAndTiedPieces) {
    const THeuristicSet diagonal = With(SH_DONTLEAVEMAINDIAGONAL);
    const THeuristicSet blackDiagonal =
        With(SH_DONTLEAVEMAINDIAGONAL, [](auto& p) { p.mainDiagonalFigure = 54; });  // g7
    const THeuristicSet keyLine = With(SH_KEYLINE, [](auto& p) { p.keyLine = 7; });
    const THeuristicSet keyDiagonal = With(SH_KEYDIAGONAL, [](auto& p) {
        p.keyDiagonal[0] = 1;   // b1
        p.keyDiagonal[1] = 55;  // h7
    });
    const THeuristicSet sweep = With(SH_SWEEPINGWHITEROOK);
    const THeuristicSet single = With(SH_SINGLEQUEENMATE);
    const char* bishop = "k7/6b1/8/8/8/8/1B6/4K3 w";
    ExpectVerdicts({
        {"the bishop leaves a1-h8", diagonal, bishop, "Bb2-a3", SH_DONTLEAVEMAINDIAGONAL},
        {"the bishop keeps to it", diagonal, bishop, "Bb2-e5", 0},
        {"the black bishop leaves it", blackDiagonal, bishop, "Ke1-d1 Bg7-h6", SH_DONTLEAVEMAINDIAGONAL},
        {"the black bishop steps back off it", blackDiagonal, bishop, "Ke1-d1 Bg7-f8",
         SH_DONTLEAVEMAINDIAGONAL},
        {"along the diagonal", blackDiagonal, bishop, "Ke1-d1 Bg7-f6", 0},
        {"the key file left empty", keyLine, kCornerKing, "Rh1-g1", SH_KEYLINE},
        {"a move along the key file", keyLine, kCornerKing, "Rh1-h5", 0},
        {"another rook holds it", keyLine, "k7/8/8/8/8/8/7R/4K2R w", "Rh1-g1", 0},
        {"along the key diagonal", keyDiagonal, "k7/8/8/8/8/8/8/1B2K3 w", "Bb1-c2", 0},
        {"off the key diagonal", keyDiagonal, "k7/8/8/8/8/8/8/1B2K3 w", "Bb1-a2", SH_KEYDIAGONAL},
        {"the rook sweeps its rank", sweep, "7k/8/8/8/8/8/8/R3K3 w", "Ra1-b1", 0},
        {"the rook leaves its rank", sweep, "7k/8/8/8/8/8/8/R3K3 w", "Ra1-a5", SH_SWEEPINGWHITEROOK},
        {"unless to take a pawn", sweep, "7k/8/8/8/p7/8/8/R3K3 w", "Ra1:a4", 0},
        {"the queen moves", single, "7k/7p/8/8/8/8/8/1Q2K3 w", "Qb1-c1 Kh8-g8", 0},
        {"the white king is tied", single, "7k/7p/8/8/8/8/8/1Q2K3 w", "Ke1-d1", SH_SINGLEQUEENMATE},
        {"a black pawn is tied", single, "7k/7p/8/8/8/8/8/1Q2K3 w", "Qb1-c1 h7-h6", SH_SINGLEQUEENMATE},
    });
}

TEST(SpecialHeuristics, RulesOfTheEnginesOwnDetections) {
    const THeuristicSet blockade = With(SH_USEBLOCKBLACKPAWNSLEVEL);
    const THeuristicSet key = With(SH_KEYSQUARE, [](auto& p) { p.keySquare = 57; });  // b8
    const THeuristicSet tempo = With(SH_ZUGZWANGTRIANGLES);
    const char* blocked = "k7/p7/P7/8/4p3/4P2R/8/4K3 w";
    const char* prison = "k7/8/1K6/4B3/8/8/8/8 w";
    const char* ending = "8/8/2k5/p7/P7/2K5/8/8 w";
    ExpectVerdicts({
        {"the blockade holds", blockade, blocked, "Rh3-h4", 0},
        {"the rook offers e4 a capture", blockade, blocked, "Rh3-f3", SH_USEBLOCKBLACKPAWNSLEVEL},
        {"the bishop keeps guarding b8", key, prison, "Be5-f4", 0},
        {"the bishop leaves b8 unguarded", key, prison, "Be5-d4", SH_KEYSQUARE},
        {"a step away from the black king", tempo, ending, "Kc3-d2 Kc6-b6 Kd2-e2", 0},
        {"a walk away from the black king", tempo, ending, "Kc3-d2 Kc6-b6 Kd2-e1", SH_ZUGZWANGTRIANGLES},
    });
}

TEST(SpecialHeuristics, TempoPatterns) {
    const auto snake = [](uint8_t after) {  // d2, e2
        return With(SH_SEASNAKE, [after](auto& p) {
            p.seaSnake = {.approach = 11, .turnBack = 12, .onlyAfterMove = after};
        });
    };
    ExpectVerdicts({
        {"onto the triangle", snake(0), kCornerKing, "Ke1-d2", 0},
        {"off the triangle", snake(0), kCornerKing, "Ke1-f2", SH_SEASNAKE},
        {"before \"only after\"", snake(1), kCornerKing, "Ke1-f2", 0},
        {"no precalculated data: never doubtful", With(SH_REDUCTIONTOGLOBREGPOS), kCornerKing, "Rh1-h2", 0},
    });
    // The zugzwang position is the one after 1. Kd1.
    const TChessboard start = test::Problem(kCornerKing, 9);
    test::TestLine target(start);
    target.Play("Ke1-d1");
    const auto zugzwang = [&](uint8_t afterMove) {
        return With(SH_ZUGZWANG, [&, afterMove](auto& p) {
            std::copy(std::begin(target.Now().squares), std::end(target.Now().squares), p.zugzwangSquares);
            p.zugzwangSet = true, p.zugzwangAfterMove = afterMove;
        });
    };
    ExpectVerdicts({
        {"reached on time", zugzwang(1), kCornerKing, "Ke1-d1", 0},
        {"missed", zugzwang(1), kCornerKing, "Ke1-f1", SH_ZUGZWANG},
        {"reached before the deadline", zugzwang(2), kCornerKing, "Ke1-d1 Ka8-b8 Kd1-c1", 0},
        {"never reached", zugzwang(2), kCornerKing, "Ke1-f1 Ka8-b8 Kf1-e1", SH_ZUGZWANG},
    });
}

// The legal moves of a FEN's position that the filters of a set keep, and the bit naming the cut.
TEST(SpecialHeuristics, FiltersOfMoves) {
    const auto ffm = [](uint8_t mode) {
        return With(SH_FINDFORCEDMATE, [mode](auto& p) { p.ffm.mode = mode; });
    };
    const THeuristicSet worst = With(SH_SKIPWORSTWHITEMOVES);
    const THeuristicSet passive = With(SH_SKIPWORSTWHITEMOVES, [](auto& p) { p.skipPassive = true; });
    const THeuristicSet light =
        With(SH_ONECOLORPLAYPOSSIBLE, [](auto& p) { p.colourMode = TColourMode::WhiteSquaresOnly; });
    const THeuristicSet separated =
        With(SH_ONECOLORPLAYPOSSIBLE, [](auto& p) { p.colourMode = TColourMode::SeparatedBlackBishop; });
    const THeuristicSet key = With(SH_KEYWHITEFIGURE, [](auto& p) { p.keyWhiteFigure = 4; });  // e1
    // clang-format off
    const struct { THeuristicSet set; const char* fen; int halfMoves; const char* kept; uint32_t reason; }
        cases[] = {
        {ffm(kFfmCheckOnly), "7k/8/8/8/8/8/8/K5R1 w", 5, "Rg1-g8 Rg1-h1", SH_FINDFORCEDMATE},
        // After 1. Kf7 White threatens 2. Rh1 mate; the rook's checks are kept as checks.
        {ffm(kFfmThreat1), "7k/8/5K2/8/8/8/8/6R1 w", 3, "Kf6-f7 Rg1-g8 Rg1-h1", SH_FINDFORCEDMATE},
        // With one move left no threat can come true: checks only.
        {ffm(kFfmThreat1), "7k/8/5K2/8/8/8/8/6R1 w", 1, "Rg1-g8 Rg1-h1", SH_FINDFORCEDMATE},
        {ffm(kFfmCheckOnly), "7k/8/5K2/8/8/8/8/6R1 b", 4, "Kh8-h7", 0},  // Black's moves are never filtered
        {worst, "k7/8/8/3r4/8/8/8/4K2R w", 9,  // not into the rook's reach
         "0-0 Ke1-e2 Ke1-f1 Ke1-f2 Rh1-f1 Rh1-g1 Rh1-h2 Rh1-h3 Rh1-h4 Rh1-h6 Rh1-h7 Rh1-h8",
         SH_SKIPWORSTWHITEMOVES},
        {passive, "7k/8/8/8/8/8/4K3/6R1 w", 9,  // no Ke2-e1
         "Ke2-d2 Ke2-d3 Ke2-e3 Ke2-f2 Ke2-f3 Rg1-a1 Rg1-b1 Rg1-c1 Rg1-d1 Rg1-e1 Rg1-f1 Rg1-g2 Rg1-g3 Rg1-g4 "
         "Rg1-g5 Rg1-g6 Rg1-g7 Rg1-g8 Rg1-h1", SH_SKIPWORSTWHITEMOVES},
        {light, "7k/8/8/8/8/8/7P/4K2B w", 9,
         "Bh1-a8 Bh1-b7 Bh1-c6 Bh1-d5 Bh1-e4 Bh1-f3 Bh1-g2 Ke1-d1 Ke1-e2 Ke1-f1 h2-h3 h2-h4",
         SH_ONECOLORPLAYPOSSIBLE},
        {separated, "k7/8/8/8/8/8/8/b3K3 b", 10, "Ka8-a7 Ka8-b7 Ka8-b8", SH_ONECOLORPLAYPOSSIBLE},
        // A bishop that has the only moves keeps them.
        {separated, "k7/2K5/1P6/8/8/8/8/b7 b", 10, "Ba1-b2 Ba1-c3 Ba1-d4 Ba1-e5 Ba1-f6 Ba1-g7 Ba1-h8", 0},
        // Re1 pins Ne7 to the immobile king: only the White king moves are searched.
        {key, "3rkr2/3pnp2/8/8/8/8/8/K3R3 w", 9, "Ka1-a2 Ka1-b1 Ka1-b2", SH_KEYWHITEFIGURE},
        // A king that can move lets the key figure go.
        {key, "3rk3/3pnp2/8/8/8/8/8/K3R3 w", 9,
         "Ka1-a2 Ka1-b1 Ka1-b2 Re1-b1 Re1-c1 Re1-d1 Re1-e2 Re1-e3 Re1-e4 Re1-e5 Re1-e6 Re1-f1 Re1-g1 Re1-h1 "
         "Re1:e7", 0},
    };
    // clang-format on
    for (const auto& c : cases) {
        const TChessboard node = test::Problem(c.fen, c.halfMoves);
        TMoveList moves;
        GenerateLegalMoves(node, moves);
        CSpecialHeuristics heuristics(c.set, node);
        EXPECT_EQ(heuristics.FilterMoves(node, moves), c.reason) << c.fen;
        std::vector<std::string> texts;
        for (const TMove& m : moves) texts.push_back(MoveToText(node, m));
        std::sort(texts.begin(), texts.end());
        std::string kept;
        for (const std::string& text : texts) kept += (kept.empty() ? "" : " ") + text;
        EXPECT_EQ(kept, c.kept) << c.fen;
    }
}

// End to end: a search under heuristics never finds a mate or a refutation the plain search does not.
TEST(SpecialHeuristics, NeverInventAMate) {
    const uint32_t masks[] = {
        SH_KEEPKINGONTHEEDGE | SH_DONTLOSEANYFIGURES | SH_3MOVESTOMATE,
        SH_FINDFORCEDMATE | SH_SKIPWORSTWHITEMOVES,
        SH_ASSERTBLACKKINGSURROUNDED | SH_SAVEQUEENROOK | SH_DONTLETBLACKQUEENCHECKTWICE | SH_AREKINGSNEAR,
    };
    const std::vector<test::TSharedDirectmate> problems = test::SharedDirectmates(2, 3);
    ASSERT_GE(problems.size(), 10u);
    int mates = 0;
    for (const test::TSharedDirectmate& p : problems) {
        const TChessboard board = test::Problem(p.fen, 2 * p.moves - 1);
        const uint8_t plain = TMateSearch(TSearchEnvironment{}).FindForcedMate(board);
        for (uint32_t mask : masks) {
            CSpecialHeuristics heuristics(With(mask), board);
            TSearchEnvironment env;
            env.heuristics = &heuristics;
            const uint8_t result = TMateSearch(env).FindForcedMate(board);
            EXPECT_TRUE(result != kMate || plain == kMate) << p.fen << " mask " << mask;
            EXPECT_TRUE(result != kNoMate || plain == kNoMate) << p.fen << " mask " << mask;
            mates += result == kMate;
        }
    }
    EXPECT_GT(mates, 0);
}

}  // namespace
}  // namespace moremate
