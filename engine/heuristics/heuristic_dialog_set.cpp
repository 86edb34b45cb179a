#include "heuristic_dialog_set.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "core/movegen.h"
#include "core/notation.h"
#include "heuristic_text.h"

namespace moremate {
namespace {

// The heuristics the fields stand for; everything else is plain or engine-only.
constexpr uint32_t kFieldBits = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE | SH_KEEPKINGNEARCORNER |
                                SH_DONTLEAVEMAINDIAGONAL | SH_DONTLETFIGUREUNBLOCK | SH_KEYWHITEFIGURE |
                                SH_KEYLINE | SH_KEYDIAGONAL | SH_SKIPWORSTWHITEMOVES | SH_FINDFORCEDMATE |
                                SH_SEASNAKE | SH_ONECOLORPLAYPOSSIBLE | SH_ZUGZWANG;

uint8_t Number(std::string_view text) {
    unsigned value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return static_cast<uint8_t>(value);
}

Square SquareOr(std::string_view text) {
    return SquareFromText(text).value_or(kNoSquare);
}

void ReadEdge(const THeuristicsDialogFields& f, THeuristicSet& set) {
    THeuristicParameters& p = set.params;
    if (f.m_bOutOfEdge || f.m_bDontLetKingMove) set.Add(SH_KEEPKINGONTHEEDGE);
    if (f.m_bOutOfExtEdge || f.m_bMoveUnlessOnEdge) set.Add(SH_KEEPKINGWITHINEXTEDGE);
    p.edgeStrict = f.m_bMoveUnlessOnEdge;
    p.kingMode = !f.m_bDontLetKingMove ? TKingMode::Off
                 : f.m_bAllowExc       ? TKingMode::AlmostStrict
                                       : TKingMode::Strict;
    p.edgeRelaxation.onAdvancedPawn = f.m_bOnAdvancedPawn;
    p.edgeRelaxation.figuresToCapture = f.m_bOnFigureCaptured ? Number(f.m_sFiguresToCapture) : 0;
    p.edgeRelaxation.deferCheck = f.m_bDeferCheck;
    p.edgeRelaxation.deferMoves = f.m_bDeferCheck ? Number(f.m_sDeferMoves) : 0;
    if (f.m_bKeepNearCorner) {
        set.Add(SH_KEEPKINGNEARCORNER);
        ReadHeuristicParameters(SH_KEEPKINGNEARCORNER, f.m_sCornerDistance, p);
    }
}

void ReadFigures(const THeuristicsDialogFields& f, THeuristicSet& set) {
    THeuristicParameters& p = set.params;
    p.loseFiguresPawns = f.m_bInclPawns ? 1 : f.m_bInclPromotablePawns ? 2 : 0;
    if (f.m_bDontLeaveMainDiagonal) set.Add(SH_DONTLEAVEMAINDIAGONAL);
    p.mainDiagonalFigure = SquareOr(f.m_sMainDiagonalFigure);
    std::fill(std::begin(p.blockedFigures), std::end(p.blockedFigures), kNoSquare);
    p.blockedCount = 0;
    if (f.m_bDontLetFigureUnblock) {
        set.Add(SH_DONTLETFIGUREUNBLOCK);
        for (std::string_view text : SquareTexts(f.m_sBlockedFigures))
            if (p.blockedCount < std::size(p.blockedFigures))
                p.blockedFigures[p.blockedCount++] = SquareOr(text);
    }
    if (f.m_bKeyWhiteFigure) set.Add(SH_KEYWHITEFIGURE);
    p.keyWhiteFigure = SquareOr(f.m_sKeyWhiteFigure);
}

void ReadLinesAndMoves(const THeuristicsDialogFields& f, THeuristicSet& set) {
    THeuristicParameters& p = set.params;
    if (f.m_bKeyLine) set.Add(SH_KEYLINE);
    const std::optional<Square> line = SquareFromText(f.m_sKeyLine + "1");
    p.keyLine = line ? static_cast<uint8_t>(FileOf(*line)) : 0xFF;
    if (f.m_bKeyDiagonal) set.Add(SH_KEYDIAGONAL);
    const size_t dash = f.m_sKeyDiagonal.find('-');
    p.keyDiagonal[0] = dash == std::string::npos ? 0xFF : SquareOr(f.m_sKeyDiagonal.substr(0, dash));
    p.keyDiagonal[1] = dash == std::string::npos ? 0xFF : SquareOr(f.m_sKeyDiagonal.substr(dash + 1));
    if (f.m_bSkipPassive || f.m_bSkipWorst) set.Add(SH_SKIPWORSTWHITEMOVES);
    p.skipPassive = f.m_bSkipPassive;
    if (f.m_bFindForcedMate) {
        set.Add(SH_FINDFORCEDMATE);
        p.ffm.mode = p.ffm.initialMode = f.m_nFfmMode;
        p.ffm.relaxations = Number(f.m_sFfmRelaxations);
        p.ffm.withOtherHeuristics = !f.m_bFfmWithOthers ? 0
                                    : f.m_bFfmPartially ? kFfmOthersPartially
                                                        : kFfmOthersFully;
    }
    if (f.m_bOneColour) set.Add(SH_ONECOLORPLAYPOSSIBLE);
    p.colourMode = f.m_eColourMode;
    p.quickMateDepth = Number(f.m_sQuickMateDepth);
}

// The approach, turn-back and "only after" items as the parameter text has them, commas between.
std::string SeaSnakeParameter(std::string_view list) {
    std::string text;
    for (std::string_view item : SquareTexts(list)) {
        if (!text.empty()) text += ',';
        text += item;
    }
    return text;
}

void ReadSeaSnake(const THeuristicsDialogFields& f, THeuristicSet& set) {
    if (!f.m_bSeaSnake) return;
    TSeaSnake& snake = set.params.seaSnake;
    set.Add(SH_SEASNAKE);
    ReadHeuristicParameters(SH_SEASNAKE, SeaSnakeParameter(f.m_sSeaSnake), set.params);
    const std::vector<std::string_view> pendulum = SquareTexts(f.m_sPendulum);
    for (size_t i = 0; i < std::size(snake.pendulum); ++i)
        snake.pendulum[i] = pendulum.size() == 2 ? SquareOr(pendulum[i]) : kNoSquare;
}

void ReadZugzwang(const THeuristicsDialogFields& f, THeuristicSet& set, const TChessboard& position) {
    if (!f.m_bZugzwang) return;
    THeuristicParameters& p = set.params;
    set.Add(SH_ZUGZWANG);
    TChessboard after;
    MakeMove(position, f.m_sZugzwangMove, after);
    std::ranges::copy(after.squares, p.zugzwangSquares);
    p.zugzwangSet = true;
    p.zugzwangAfterMove = Number(f.m_sZugzwangBy);
}

// White's move in `position` that leads to the zugzwang position; empty when none does.
std::string ZugzwangMoveText(const THeuristicParameters& p, const TChessboard& position) {
    if (!p.zugzwangSet) return {};
    TMoveList moves;
    GenerateLegalMoves(position, moves);
    for (const TMove& move : moves) {
        TChessboard after;
        PlayMove(position, move, after);
        if (std::memcmp(after.squares, p.zugzwangSquares, sizeof after.squares) == 0)
            return MoveToText(position, move);
    }
    return {};
}

std::string PendulumText(const TSeaSnake& snake) {
    if (snake.pendulum[0] >= 64 || snake.pendulum[1] >= 64) return {};
    return HeuristicSquareText(snake.pendulum[0]) + "," + HeuristicSquareText(snake.pendulum[1]);
}

void ShowPlayPatterns(const THeuristicSet& set, const TChessboard& position, THeuristicsDialogFields& f) {
    const THeuristicParameters& p = set.params;
    f.m_bFfmWithOthers = p.ffm.withOtherHeuristics != 0;
    f.m_bFfmPartially = p.ffm.withOtherHeuristics == kFfmOthersPartially;
    f.m_bSeaSnake = set.Has(SH_SEASNAKE);
    if (f.m_bSeaSnake) f.m_sSeaSnake = HeuristicParameterText(SH_SEASNAKE, p);
    f.m_sPendulum = PendulumText(p.seaSnake);
    f.m_bOneColour = set.Has(SH_ONECOLORPLAYPOSSIBLE);
    f.m_eColourMode = p.colourMode;
    f.m_bZugzwang = set.Has(SH_ZUGZWANG);
    f.m_sZugzwangMove = ZugzwangMoveText(p, position);
    if (p.zugzwangSet) f.m_sZugzwangBy = std::to_string(p.zugzwangAfterMove);
}

}  // namespace

// The parameter texts of heuristics that are off stay empty: their fields show nothing.
THeuristicsDialogFields DialogFieldsOfSet(const THeuristicSet& set, const TChessboard& position) {
    const THeuristicParameters& p = set.params;
    THeuristicsDialogFields f;
    const bool edge = set.Has(SH_KEEPKINGONTHEEDGE);
    f.m_bOutOfEdge = edge && p.kingMode == TKingMode::Off;
    f.m_bDontLetKingMove = edge && p.kingMode != TKingMode::Off;
    f.m_bAllowExc = edge && p.kingMode == TKingMode::AlmostStrict;
    f.m_bOutOfExtEdge = set.Has(SH_KEEPKINGWITHINEXTEDGE) && !p.edgeStrict;
    f.m_bMoveUnlessOnEdge = set.Has(SH_KEEPKINGWITHINEXTEDGE) && p.edgeStrict;
    f.m_bOnAdvancedPawn = p.edgeRelaxation.onAdvancedPawn;
    f.m_bOnFigureCaptured = p.edgeRelaxation.figuresToCapture > 0;
    if (f.m_bOnFigureCaptured) f.m_sFiguresToCapture = std::to_string(p.edgeRelaxation.figuresToCapture);
    f.m_bDeferCheck = p.edgeRelaxation.deferCheck;
    if (f.m_bDeferCheck) f.m_sDeferMoves = std::to_string(p.edgeRelaxation.deferMoves);
    f.m_bKeepNearCorner = set.Has(SH_KEEPKINGNEARCORNER);
    if (f.m_bKeepNearCorner) f.m_sCornerDistance = HeuristicParameterText(SH_KEEPKINGNEARCORNER, p);
    f.m_bInclPawns = p.loseFiguresPawns == 1;
    f.m_bInclPromotablePawns = p.loseFiguresPawns >= 2;
    f.m_bDontLeaveMainDiagonal = set.Has(SH_DONTLEAVEMAINDIAGONAL);
    f.m_sMainDiagonalFigure = HeuristicSquareText(p.mainDiagonalFigure);
    f.m_bDontLetFigureUnblock = set.Has(SH_DONTLETFIGUREUNBLOCK);
    for (uint8_t i = 0; i < p.blockedCount && i < std::size(p.blockedFigures); ++i) {
        if (i > 0) f.m_sBlockedFigures.push_back(',');
        f.m_sBlockedFigures.append(HeuristicSquareText(p.blockedFigures[i]));
    }
    f.m_bKeyWhiteFigure = set.Has(SH_KEYWHITEFIGURE);
    f.m_sKeyWhiteFigure = HeuristicSquareText(p.keyWhiteFigure);
    f.m_bKeyLine = set.Has(SH_KEYLINE);
    if (f.m_bKeyLine) f.m_sKeyLine = HeuristicParameterText(SH_KEYLINE, p);
    f.m_bKeyDiagonal = set.Has(SH_KEYDIAGONAL);
    if (f.m_bKeyDiagonal) f.m_sKeyDiagonal = HeuristicParameterText(SH_KEYDIAGONAL, p);
    f.m_bSkipPassive = set.Has(SH_SKIPWORSTWHITEMOVES) && p.skipPassive;
    f.m_bSkipWorst = set.Has(SH_SKIPWORSTWHITEMOVES) && !p.skipPassive;
    f.m_bFindForcedMate = set.Has(SH_FINDFORCEDMATE);
    f.m_nFfmMode = p.ffm.mode;
    f.m_sFfmRelaxations = std::to_string(p.ffm.relaxations);
    if (p.quickMateDepth > 0) f.m_sQuickMateDepth = std::to_string(p.quickMateDepth);
    ShowPlayPatterns(set, position, f);
    return f;
}

THeuristicSet SetOfDialogFields(const THeuristicsDialogFields& fields, uint32_t plainBits,
                                const THeuristicSet& base, const TChessboard& position) {
    THeuristicSet set = base;
    set.mask = (base.mask & ~(kDialogPlainBits | kFieldBits)) | (plainBits & kDialogPlainBits);
    ReadEdge(fields, set);
    ReadFigures(fields, set);
    ReadLinesAndMoves(fields, set);
    ReadSeaSnake(fields, set);
    ReadZugzwang(fields, set, position);
    return set;
}

}  // namespace moremate
