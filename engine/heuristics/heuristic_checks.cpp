#include "heuristic_checks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "core/chess_exception.h"
#include "core/notation.h"
#include "heuristic_text.h"

namespace moremate {
namespace {

using TFields = THeuristicsDialogFields;
using TVerdict = std::optional<std::string>;

constexpr std::string_view kKingMoveLabel = "Don't let bl.king move (unless immed.mate)";
constexpr std::string_view kImproperSquare = "Improper square: ";
constexpr int kMaxFiguresToCapture = 15;

// A decimal number of the whole text within [min, max].
std::optional<int> NumberIn(std::string_view text, int min, int max) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stop != end || value < min || value > max)
        return std::nullopt;
    return value;
}

// The texts one after another.
std::string Joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (std::string_view part : parts) text.append(part);
    return text;
}

TVerdict KingMoveConflict(const TFields& f, const TChessboard&) {
    if (!f.m_bDontLetKingMove) return std::nullopt;
    const std::pair<bool, std::string_view> options[] = {
        {f.m_bOutOfEdge, "Don't let bl.king out of the edge"},
        {f.m_bOutOfExtEdge, "Don't let bl.king out of ext.edge"},
        {f.m_bMoveUnlessOnEdge, "Don't let bl.king move unless on the edge"},
    };
    for (const auto& [selected, label] : options)
        if (selected)
            return Joined({"Conflict of heuristics (\"", kKingMoveLabel, "\" and \"", label, "\")"});
    return std::nullopt;
}

TVerdict ExtEdgeConflict(const TFields& f, const TChessboard&) {
    if (!f.m_bOutOfExtEdge || !f.m_bMoveUnlessOnEdge) return std::nullopt;
    return "Conflict of heuristics: select only one of 'Don't let black king out of ext.edge' and '(Don't "
           "let "
           "black king) move unless back to the edge'";
}

TVerdict AllowExcAlone(const TFields& f, const TChessboard&) {
    if (!f.m_bAllowExc || f.m_bDontLetKingMove) return std::nullopt;
    return "Heuristics 'Don't let black king move' is off, while 'allow exc' is on.\nIt requires correction.";
}

TVerdict CornerDistance(const TFields& f, const TChessboard&) {
    if (!f.m_bKeepNearCorner) return std::nullopt;
    THeuristicParameters params;
    try {
        ReadHeuristicParameters(SH_KEEPKINGNEARCORNER, f.m_sCornerDistance, params);
        return std::nullopt;
    } catch (const ChessException&) {
        return "Invalid maximum distance from corner in the parameter of heuristics 'Keep king near corner'";
    }
}

TVerdict FiguresToCapture(const TFields& f, const TChessboard&) {
    if (!f.m_bOnFigureCaptured || NumberIn(f.m_sFiguresToCapture, 1, kMaxFiguresToCapture))
        return std::nullopt;
    return "Invalid number of figures to capture for relaxation of edge heuristics";
}

TVerdict DeferMoves(const TFields& f, const TChessboard&) {
    if (!f.m_bDeferCheck || NumberIn(f.m_sDeferMoves, 0, 255)) return std::nullopt;
    return "Invalid number of moves to defer";
}

TVerdict DeferWithoutEvent(const TFields& f, const TChessboard&) {
    if (!f.m_bDeferCheck || f.m_bOnAdvancedPawn || f.m_bOnFigureCaptured) return std::nullopt;
    return "Defer check is meaningful only when 'on advanced pawn' or 'on figure captured' selected.";
}

TVerdict BothPawnOptions(const TFields& f, const TChessboard&) {
    if (!f.m_bInclPawns || !f.m_bInclPromotablePawns) return std::nullopt;
    return "Only one of additional options of Don't lose any figures (incl. pawns + incl.promotable pawns) "
           "can be "
           "selected.";
}

TVerdict MainDiagonalFigure(const TFields& f, const TChessboard&) {
    if (!f.m_bDontLeaveMainDiagonal || f.m_sMainDiagonalFigure.empty()) return std::nullopt;
    const std::optional<Square> square = SquareFromText(f.m_sMainDiagonalFigure);
    if (!square) return Joined({kImproperSquare, f.m_sMainDiagonalFigure});
    const int file = FileOf(*square), rank = RankOf(*square);
    if (file == rank || file + rank == 7) return std::nullopt;
    return "Improper field (Black figure not let leave main diagonal)";
}

TVerdict BlockedFigures(const TFields& f, const TChessboard&) {
    if (!f.m_bDontLetFigureUnblock) return std::nullopt;
    std::vector<Square> seen;
    for (std::string_view text : SquareTexts(f.m_sBlockedFigures)) {
        const std::optional<Square> square = SquareFromText(text);
        if (!square) return Joined({kImproperSquare, text});
        if (std::ranges::find(seen, *square) != seen.end()) return Joined({"Duplicate square: ", text});
        seen.push_back(*square);
    }
    return std::nullopt;
}

// Whether the white slider on `from` pins a black piece against the black king.
bool PinsAgainstBlackKing(const TChessboard& board, int from) {
    const int king = board.BlackKingSquare();
    const int df = FileOf(king) - FileOf(from), dr = RankOf(king) - RankOf(from);
    const bool straight = df == 0 || dr == 0, diagonal = std::abs(df) == std::abs(dr);
    const uint8_t type = TypeOf(board.squares[from]);
    if (from == king || !((straight && (type & kRook) == kRook) || (diagonal && (type & kBishop) == kBishop)))
        return false;
    const int stepFile = (df > 0) - (df < 0), stepRank = (dr > 0) - (dr < 0);
    int between = 0;
    for (int f = FileOf(from) + stepFile, r = RankOf(from) + stepRank; MakeSquare(f, r) != king;
         f += stepFile, r += stepRank) {
        const Piece piece = board.squares[MakeSquare(f, r)];
        if (piece != kEmpty && (ColourOf(piece) != kBlack || ++between > 1)) return false;
    }
    return between == 1;
}

TVerdict KeyWhiteFigure(const TFields& f, const TChessboard& position) {
    if (!f.m_bKeyWhiteFigure) return std::nullopt;
    const std::optional<Square> square = SquareFromText(f.m_sKeyWhiteFigure);
    const Piece piece = square ? position.squares[*square] : kEmpty;
    if (ColourOf(piece) != kWhite || TypeOf(piece) == kKing || TypeOf(piece) == kPawn)
        return "Invalid key white figure";
    if (!PinsAgainstBlackKing(position, *square)) return "Invalid key white figure (pinned piece not found)";
    return std::nullopt;
}

TVerdict KeyLine(const TFields& f, const TChessboard&) {
    if (!f.m_bKeyLine) return std::nullopt;
    const bool letter = f.m_sKeyLine.size() == 1 && SquareFromText(Joined({f.m_sKeyLine, "1"})).has_value();
    return letter ? std::nullopt : TVerdict("Invalid field Key line");
}

TVerdict KeyDiagonal(const TFields& f, const TChessboard&) {
    if (!f.m_bKeyDiagonal) return std::nullopt;
    const std::string_view text = f.m_sKeyDiagonal;
    const size_t dash = text.find('-');
    const std::optional<Square> a = SquareFromText(text.substr(0, dash));
    const std::optional<Square> b =
        dash == std::string_view::npos ? std::nullopt : SquareFromText(text.substr(dash + 1));
    const bool diagonal =
        a && b && *a != *b && std::abs(FileOf(*a) - FileOf(*b)) == std::abs(RankOf(*a) - RankOf(*b));
    return diagonal ? std::nullopt : TVerdict("Invalid field Key diagonal");
}

TVerdict BothSkipOptions(const TFields& f, const TChessboard&) {
    if (!f.m_bSkipPassive || !f.m_bSkipWorst) return std::nullopt;
    return "Only one of the checkboxes can be set: 'skip passive wh.moves' / 'skip worst wh.moves'";
}

TVerdict FfmWithSeaSnake(const TFields& f, const TChessboard&) {
    if (!f.m_bFindForcedMate || !f.m_bSeaSnake) return std::nullopt;
    return "FindForcedMate cannot be used together with SeaSnake.";
}

TVerdict FfmRelaxations(const TFields& f, const TChessboard&) {
    if (!f.m_bFindForcedMate) return std::nullopt;
    const std::optional<int> count = NumberIn(f.m_sFfmRelaxations, 0, 255);
    if (!count)
        return "Invalid value in field with number of heuristics relaxations for FFM (FindForcedMate)";
    const int max = std::max(0, kFfmThreat5 - f.m_nFfmMode);
    if (*count > max)
        return Joined(
            {"Number of heuristics relaxations for FFM is too large (max = ", std::to_string(max), ")"});
    return std::nullopt;
}

TVerdict FfmPartiallyAlone(const TFields& f, const TChessboard&) {
    if (!f.m_bFindForcedMate || !f.m_bFfmPartially || f.m_bFfmWithOthers) return std::nullopt;
    return "'Partially' applies to '-WithOtherHeuristics' of FindForcedMate, which is off.";
}

TVerdict OneColourMode(const TFields& f, const TChessboard&) {
    if (!f.m_bOneColour || f.m_eColourMode != TColourMode::None) return std::nullopt;
    return "Choose the squares of 'One color play possible': white squares only, black squares only or "
           "separated black bishop.";
}

// Two different squares of the list `texts` from `first` on, or the message naming the fault.
TVerdict TwoSquares(const std::vector<std::string_view>& texts, size_t first) {
    for (size_t i = first; i < first + 2; ++i)
        if (!SquareFromText(texts[i])) return Joined({kImproperSquare, texts[i]});
    if (SquareFromText(texts[first]) == SquareFromText(texts[first + 1]))
        return Joined({"Duplicate square: ", texts[first + 1]});
    return std::nullopt;
}

TVerdict SeaSnakeSquares(const TFields& f, const TChessboard&) {
    if (!f.m_bSeaSnake) return std::nullopt;
    const std::vector<std::string_view> texts = SquareTexts(f.m_sSeaSnake);
    if (texts.size() < 2 || texts.size() > 3)
        return "Sea snake: give the approach and the turn-back square, then the move of 'only after' if any "
               "(e.g. D2,E2,3).";
    if (TVerdict fault = TwoSquares(texts, 0)) return fault;
    if (KingDistance(*SquareFromText(texts[0]), *SquareFromText(texts[1])) != 1)
        return "Sea snake: the approach and the turn-back square must be neighbours.";
    if (texts.size() == 3 && !NumberIn(texts[2], 0, 255))
        return Joined({"Sea snake: invalid move number of 'only after': ", texts[2]});
    return std::nullopt;
}

TVerdict SeaSnakePendulum(const TFields& f, const TChessboard&) {
    const std::vector<std::string_view> texts = SquareTexts(f.m_sPendulum);
    if (!f.m_bSeaSnake || texts.empty()) return std::nullopt;
    if (texts.size() != 2) return "Sea snake: the pendulum takes two squares (or none).";
    return TwoSquares(texts, 0);
}

TVerdict ZugzwangMove(const TFields& f, const TChessboard& position) {
    if (!f.m_bZugzwang) return std::nullopt;
    TChessboard after;
    try {
        MakeMove(position, f.m_sZugzwangMove, after);
    } catch (const ChessException&) {
        return "Invalid move for SH_ZUGZWANG";
    }
    if (!NumberIn(f.m_sZugzwangBy, 1, 255))
        return "Invalid number of the move by which SH_ZUGZWANG is to return to its position";
    return std::nullopt;
}

TVerdict QuickMateDepth(const TFields& f, const TChessboard&) {
    if (f.m_sQuickMateDepth.empty() || NumberIn(f.m_sQuickMateDepth, kMinQuickMateDepth, kMaxQuickMateDepth))
        return std::nullopt;
    return "Value of depth for quicker mate is out of range.";
}

// The checks in the order the dialog makes them; the first that fails gives the message.
constexpr std::array<TVerdict (*)(const TFields&, const TChessboard&), 22> kChecks = {
    KingMoveConflict,  ExtEdgeConflict,  AllowExcAlone,      CornerDistance, FiguresToCapture,  DeferMoves,
    DeferWithoutEvent, BothPawnOptions,  MainDiagonalFigure, BlockedFigures, KeyWhiteFigure,    KeyLine,
    KeyDiagonal,       BothSkipOptions,  FfmWithSeaSnake,    FfmRelaxations, FfmPartiallyAlone, OneColourMode,
    SeaSnakeSquares,   SeaSnakePendulum, ZugzwangMove,       QuickMateDepth,
};

}  // namespace

std::vector<std::string_view> SquareTexts(std::string_view list) {
    std::vector<std::string_view> texts;
    size_t start = 0;
    while ((start = list.find_first_not_of(", ", start)) != std::string_view::npos) {
        const size_t end = std::min(list.find_first_of(", ", start), list.size());
        texts.push_back(list.substr(start, end - start));
        start = end;
    }
    return texts;
}

THeuristicsCheck CheckHeuristicsDialog(const THeuristicsDialogFields& fields, const TChessboard& position) {
    THeuristicsCheck check;
    for (const auto& test : kChecks) {
        if (TVerdict message = test(fields, position)) {
            check.m_bOk = false;
            check.m_sMessage = std::move(*message);
            return check;
        }
    }
    const std::optional<int> relaxations = NumberIn(fields.m_sFfmRelaxations, 0, 255);
    if (fields.m_bFindForcedMate && !fields.m_bRelaxHeuristics && relaxations > 0)
        check.m_vsNotes.push_back(Joined({"Note: relaxation of heuristics is off, so setting for FFM (",
                                          std::to_string(*relaxations), " time(s)) will be ignored"}));
    return check;
}

}  // namespace moremate
