#include "heuristic_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <span>
#include <vector>

#include "core/chess_exception.h"

namespace moremate {
namespace {

using TItems = std::vector<std::string>;
using TChoices = std::span<const std::string_view>;

constexpr std::string_view kQuickModeItem = " QuickMode";
constexpr std::string_view kNoDynamicDlfu = " (CannotApplyDLFUDynamically)";
constexpr std::string_view kItemSeparator = ", ";

constexpr std::array<std::string_view, 3> kColourModes = {"WhiteSquaresOnly", "BlackSquaresOnly",
                                                          "SeparatedBlackBishop"};
constexpr std::array<std::string_view, 2> kLoseFigures = {"incl.pawns", "incl.pawnsBeforePromo"};
constexpr std::array<std::string_view, 1> kStrict = {"strict"};
constexpr std::array<std::string_view, 1> kSkipPassive = {"SkipPassive"};
constexpr std::array<std::string_view, 8> kFfmModes = {"CheckOnly", "#1", "#1+", "#2",
                                                       "#2+",       "#3", "#4",  "#5"};
constexpr std::array<std::string_view, 3> kFfmSuffixes = {"WithOtherHeuristics", "Preliminary", "Custom"};

// Composed texts shown under another name. "(STRICT)" stands before "(strict)" so that reading
// the display name back gives the king mode.
struct TDisplayName {
    std::string_view composed;
    std::string_view displayed;
};
constexpr std::array<TDisplayName, 4> kDisplayNames = {{
    {"SH_KEEPKINGONTHEEDGE(STRICT)", "SH_DONTLETKINGMOVE"},
    {"SH_KEEPKINGONTHEEDGE(strict)", "SH_DONTLETKINGMOVE"},
    {"SH_KEEPKINGONTHEEDGE(ALMOST_STRICT)", "SH_DONTLETKINGMOVE(excptns)"},
    {"SH_SKIPWORSTWHITEMOVES(SkipPassive)", "SH_SKIPPASSIVEWHITEMOVES"},
}};

// ---- writing ----

std::string Join(const TItems& items, std::string_view separator) {
    std::string text;
    for (const std::string& item : items) {
        if (item.empty()) continue;
        if (!text.empty()) text += separator;
        text += item;
    }
    return text;
}

// The choice numbered `index` from 1; nothing for 0 or a number past the list.
std::string ChoiceText(unsigned index, TChoices choices) {
    return index >= 1 && index <= choices.size() ? std::string(choices[index - 1]) : std::string();
}

// `prefix` followed by the number, as "C2" or "D3".
std::string Numbered(char prefix, int number) {
    std::string text(1, prefix);
    text += std::to_string(number);
    return text;
}

void AddRelaxationItems(const TEdgeRelaxation& relax, TItems& items) {
    if (relax.figuresToCapture > 0)
        items.push_back(Numbered('C', relax.figuresToCapture) + (relax.alsoPawns ? "" : "f"));
    if (relax.onAdvancedPawn) items.emplace_back("A");
    if (relax.deferCheck) {
        items.push_back(Numbered('D', relax.deferMoves));
        items.push_back(Numbered('M', relax.deferSecondCount));
    }
}

std::string EdgeText(const THeuristicParameters& p) {
    TItems items;
    if (p.kingMode == TKingMode::Strict) items.emplace_back("STRICT");
    if (p.kingMode == TKingMode::AlmostStrict) items.emplace_back("ALMOST_STRICT");
    if (p.inclCorner) items.emplace_back("incl.corner");
    if (!p.edgeRelaxation.extEdgeOnly) AddRelaxationItems(p.edgeRelaxation, items);
    if (p.edgeStrict) items.emplace_back("strict");
    return Join(items, ",");
}

std::string ExtEdgeText(const THeuristicParameters& p) {
    TItems items;
    AddRelaxationItems(p.edgeRelaxation, items);
    if (p.inclCorner) items.emplace_back("incl.corner");
    if (p.edgeStrict) items.emplace_back("strict");
    return Join(items, ",");
}

std::string ColourText(const THeuristicParameters& p) {
    return ChoiceText(static_cast<unsigned>(p.colourMode), kColourModes);
}

std::string MainDiagonalText(const THeuristicParameters& p) {
    return HeuristicSquareText(p.mainDiagonalFigure);
}

std::string DlfuText(const THeuristicParameters& p) {
    TItems items;
    if (p.dlfuEff) items.emplace_back("EFF");
    const int count = std::min<int>(p.blockedCount, std::size(p.blockedFigures));
    for (int i = 0; i < count; ++i) items.push_back(HeuristicSquareText(p.blockedFigures[i]));
    return Join(items, ",");
}

std::string FfmText(const THeuristicParameters& p) {
    std::string text(FindForcedMateModeText(p.ffm.mode));
    const bool flags[] = {p.ffm.withOtherHeuristics != 0, p.ffm.preliminary, p.ffm.custom};
    for (unsigned i = 0; i < std::size(flags); ++i)
        if (flags[i]) (text += '-') += kFfmSuffixes[i];
    return text;
}

std::string PromotedText(const THeuristicParameters& p) {
    return ChoiceText(p.promotedStrict, kStrict);
}

std::string KeyLineText(const THeuristicParameters& p) {
    return p.keyLine < 8 ? std::string(1, static_cast<char>('A' + p.keyLine)) : std::string();
}

std::string KeyDiagonalText(const THeuristicParameters& p) {
    return HeuristicSquareText(p.keyDiagonal[0]) + "-" + HeuristicSquareText(p.keyDiagonal[1]);
}

std::string LoseFiguresText(const THeuristicParameters& p) {
    return ChoiceText(std::min<unsigned>(p.loseFiguresPawns, 2), kLoseFigures);
}

std::string KeySquareText(const THeuristicParameters& p) {
    return HeuristicSquareText(p.keySquare);
}

std::string KeyFigureText(const THeuristicParameters& p) {
    return HeuristicSquareText(p.keyWhiteFigure);
}

std::string SurroundedText(const THeuristicParameters& p) {
    return ChoiceText(p.surroundedStrict, kStrict);
}

std::string SkipText(const THeuristicParameters& p) {
    return ChoiceText(p.skipPassive, kSkipPassive);
}

std::string CornerText(const THeuristicParameters& p) {
    const int distance = p.cornerDistance;
    return distance > 0 ? std::to_string(distance) + "S" : std::to_string(-distance) + "M";
}

std::string SeaSnakeText(const THeuristicParameters& p) {
    std::string text =
        HeuristicSquareText(p.seaSnake.approach) + "," + HeuristicSquareText(p.seaSnake.turnBack);
    if (p.seaSnake.onlyAfterMove >= 1) text += Numbered(',', p.seaSnake.onlyAfterMove);
    return text;
}

// ---- reading ----

// The item of `text` that cannot be read, reported with the heuristic's name.
[[noreturn]] void Fail(uint32_t bit, std::string_view item) {
    throw ChessException("Invalid parameter of " + std::string(HeuristicName(bit)) + ": \"" +
                         std::string(item) + "\"");
}

// The pieces of `text` between the separators; none for an empty text.
std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    if (text.empty()) return parts;
    for (size_t start = 0;;) {
        const size_t end = text.find(separator, start);
        parts.push_back(text.substr(start, end - start));
        if (end == std::string_view::npos) return parts;
        start = end + 1;
    }
}

// An unsigned decimal number of `text` within [0, max], or -1.
int NumberOf(std::string_view text, int max) {
    int value = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || text[0] == '-') return -1;
    return value <= max ? value : -1;
}

int ReadNumber(uint32_t bit, std::string_view text, int max) {
    const int value = NumberOf(text, max);
    if (value < 0) Fail(bit, text);
    return value;
}

// A square in either case; none for an empty text.
Square ReadSquare(uint32_t bit, std::string_view text) {
    if (text.empty()) return kNoSquare;
    const std::optional<Square> square = SquareFromText(text);
    if (!square) Fail(bit, text);
    return *square;
}

// The number from 1 of the choice that `text` is; 0 for an empty text.
unsigned ReadChoice(uint32_t bit, std::string_view text, TChoices choices) {
    if (text.empty()) return 0;
    const auto found = std::ranges::find(choices, text);
    if (found == choices.end()) Fail(bit, text);
    return static_cast<unsigned>(found - choices.begin()) + 1;
}

bool HasRelaxationItems(const TEdgeRelaxation& relax) {
    return relax.figuresToCapture > 0 || relax.onAdvancedPawn || relax.deferCheck;
}

void ClearPrintedRelaxation(TEdgeRelaxation& relax) {
    relax.figuresToCapture = 0;
    relax.alsoPawns = false;
    relax.onAdvancedPawn = false;
    relax.deferCheck = false;
    relax.deferMoves = 0;
    relax.deferSecondCount = 0;
}

// One dynamic relaxation item ("C2f", "C1", "A", "D3", "M1"); false for any other text.
bool ReadRelaxationItem(uint32_t bit, std::string_view item, TEdgeRelaxation& relax) {
    if (item == "A") return relax.onAdvancedPawn = true;
    if (item.empty() || (item[0] != 'C' && item[0] != 'D' && item[0] != 'M')) return false;
    std::string_view number = item.substr(1);
    if (item[0] == 'C') {
        relax.alsoPawns = !number.ends_with('f');
        if (!relax.alsoPawns) number.remove_suffix(1);
        relax.figuresToCapture = static_cast<uint8_t>(ReadNumber(bit, number, 255));
    } else if (item[0] == 'D') {
        relax.deferCheck = true;
        relax.deferMoves = static_cast<uint8_t>(ReadNumber(bit, number, 255));
    } else {
        relax.deferSecondCount = static_cast<uint8_t>(ReadNumber(bit, number, 255));
    }
    return true;
}

// The items shared by the edge and ext.edge texts; returns whether relaxation items were read.
bool ReadEdgeItems(uint32_t bit, std::string_view text, THeuristicParameters& p) {
    p.inclCorner = false;
    p.edgeStrict = false;
    TEdgeRelaxation relax = p.edgeRelaxation;
    ClearPrintedRelaxation(relax);
    bool relaxed = false;
    for (std::string_view item : Split(text, ',')) {
        if (bit == SH_KEEPKINGONTHEEDGE && item == "STRICT") {
            p.kingMode = TKingMode::Strict;
        } else if (bit == SH_KEEPKINGONTHEEDGE && item == "ALMOST_STRICT") {
            p.kingMode = TKingMode::AlmostStrict;
        } else if (item == "incl.corner") {
            p.inclCorner = true;
        } else if (item == "strict") {
            p.edgeStrict = true;
        } else if (ReadRelaxationItem(bit, item, relax)) {
            relaxed = true;
        } else {
            Fail(bit, item);
        }
    }
    if (relaxed || bit == SH_KEEPKINGWITHINEXTEDGE) {
        relax.extEdgeOnly = false;
        p.edgeRelaxation = relax;
    }
    return relaxed;
}

void ReadEdge(std::string_view text, THeuristicParameters& p) {
    p.kingMode = TKingMode::Off;
    ReadEdgeItems(SH_KEEPKINGONTHEEDGE, text, p);
}

void ReadExtEdge(std::string_view text, THeuristicParameters& p) {
    ReadEdgeItems(SH_KEEPKINGWITHINEXTEDGE, text, p);
}

void ReadColour(std::string_view text, THeuristicParameters& p) {
    p.colourMode = static_cast<TColourMode>(ReadChoice(SH_ONECOLORPLAYPOSSIBLE, text, kColourModes));
}

void ReadMainDiagonal(std::string_view text, THeuristicParameters& p) {
    p.mainDiagonalFigure = ReadSquare(SH_DONTLEAVEMAINDIAGONAL, text);
}

void ReadDlfu(std::string_view text, THeuristicParameters& p) {
    p.dlfuEff = false;
    p.blockedCount = 0;
    std::ranges::fill(p.blockedFigures, kNoSquare);
    for (std::string_view item : Split(text, ',')) {
        if (item == "EFF") {
            p.dlfuEff = true;
            continue;
        }
        if (p.blockedCount == std::size(p.blockedFigures)) Fail(SH_DONTLETFIGUREUNBLOCK, item);
        p.blockedFigures[p.blockedCount++] = ReadSquare(SH_DONTLETFIGUREUNBLOCK, item);
    }
}

// "<mode>-WithOtherHeuristics-Preliminary-Custom", every part optional; the mode read becomes the
// mode the relaxation starts from, and a text without one keeps the mode as it was.
void ReadFfm(std::string_view text, THeuristicParameters& p) {
    const size_t dash = text.find('-');
    const std::string_view mode = text.substr(0, dash);
    if (!mode.empty()) {
        p.ffm.mode = p.ffm.initialMode = FindForcedMateModeFromText(mode);
        if (!p.ffm.mode) Fail(SH_FINDFORCEDMATE, mode);
    }
    p.ffm.withOtherHeuristics = 0;
    p.ffm.preliminary = false;
    p.ffm.custom = false;
    if (dash == std::string_view::npos) return;
    if (dash + 1 == text.size()) Fail(SH_FINDFORCEDMATE, text);
    for (std::string_view suffix : Split(text.substr(dash + 1), '-')) {
        switch (ReadChoice(SH_FINDFORCEDMATE, suffix, kFfmSuffixes)) {
            case 1:
                p.ffm.withOtherHeuristics = kFfmOthersFully;
                break;
            case 2:
                p.ffm.preliminary = true;
                break;
            case 3:
                p.ffm.custom = true;
                break;
            default:
                Fail(SH_FINDFORCEDMATE, suffix);
        }
    }
}

void ReadPromotedQueen(std::string_view text, THeuristicParameters& p) {
    p.promotedStrict = ReadChoice(SH_DONTLETPROMOTEDQUEENMOVE, text, kStrict) != 0;
}

void ReadPromotedFigure(std::string_view text, THeuristicParameters& p) {
    p.promotedStrict = ReadChoice(SH_DONTLETPROMOTEDFIGUREMOVE, text, kStrict) != 0;
}

void ReadKeyLine(std::string_view text, THeuristicParameters& p) {
    p.keyLine = 0xFF;
    if (text.empty()) return;
    const int file = text.size() == 1 ? std::toupper(static_cast<unsigned char>(text[0])) - 'A' : -1;
    if (file < 0 || file >= 8) Fail(SH_KEYLINE, text);
    p.keyLine = static_cast<uint8_t>(file);
}

void ReadKeyDiagonal(std::string_view text, THeuristicParameters& p) {
    const std::vector<std::string_view> ends = Split(text, '-');
    if (ends.size() != 2) Fail(SH_KEYDIAGONAL, text);
    for (int i = 0; i < 2; ++i) p.keyDiagonal[i] = ReadSquare(SH_KEYDIAGONAL, ends[i]);
}

void ReadLoseFigures(std::string_view text, THeuristicParameters& p) {
    p.loseFiguresPawns = static_cast<uint8_t>(ReadChoice(SH_DONTLOSEANYFIGURES, text, kLoseFigures));
}

void ReadKeySquare(std::string_view text, THeuristicParameters& p) {
    p.keySquare = ReadSquare(SH_KEYSQUARE, text);
}

void ReadKeyFigure(std::string_view text, THeuristicParameters& p) {
    p.keyWhiteFigure = ReadSquare(SH_KEYWHITEFIGURE, text);
}

void ReadSurrounded(std::string_view text, THeuristicParameters& p) {
    p.surroundedStrict = ReadChoice(SH_ASSERTBLACKKINGSURROUNDED, text, kStrict) != 0;
}

void ReadSkip(std::string_view text, THeuristicParameters& p) {
    p.skipPassive = ReadChoice(SH_SKIPWORSTWHITEMOVES, text, kSkipPassive) != 0;
}

// "<n>S" (squares, n up to 127) or "<n>M" (king moves, stored as -n, n up to 128).
void ReadCorner(std::string_view text, THeuristicParameters& p) {
    const bool squares = text.ends_with('S');
    if (!squares && !text.ends_with('M')) Fail(SH_KEEPKINGNEARCORNER, text);
    const int count = ReadNumber(SH_KEEPKINGNEARCORNER, text.substr(0, text.size() - 1), squares ? 127 : 128);
    p.cornerDistance = static_cast<int8_t>(squares ? count : -count);
}

void ReadSeaSnake(std::string_view text, THeuristicParameters& p) {
    const std::vector<std::string_view> items = Split(text, ',');
    if (items.size() == 1 || items.size() > 3) Fail(SH_SEASNAKE, text);
    p.seaSnake.approach = items.empty() ? kNoSquare : ReadSquare(SH_SEASNAKE, items[0]);
    p.seaSnake.turnBack = items.empty() ? kNoSquare : ReadSquare(SH_SEASNAKE, items[1]);
    p.seaSnake.onlyAfterMove =
        items.size() == 3 ? static_cast<uint8_t>(ReadNumber(SH_SEASNAKE, items[2], 255)) : 0;
}

// The heuristics with a parameter text, with its writer and reader.
struct TParameterFormat {
    uint32_t bit;
    std::string (*write)(const THeuristicParameters&);
    void (*read)(std::string_view, THeuristicParameters&);
};
constexpr std::array<TParameterFormat, 17> kFormats = {{
    {SH_KEEPKINGONTHEEDGE, EdgeText, ReadEdge},
    {SH_ONECOLORPLAYPOSSIBLE, ColourText, ReadColour},
    {SH_DONTLEAVEMAINDIAGONAL, MainDiagonalText, ReadMainDiagonal},
    {SH_KEEPKINGWITHINEXTEDGE, ExtEdgeText, ReadExtEdge},
    {SH_DONTLETFIGUREUNBLOCK, DlfuText, ReadDlfu},
    {SH_FINDFORCEDMATE, FfmText, ReadFfm},
    {SH_DONTLETPROMOTEDQUEENMOVE, PromotedText, ReadPromotedQueen},
    {SH_KEYLINE, KeyLineText, ReadKeyLine},
    {SH_KEYDIAGONAL, KeyDiagonalText, ReadKeyDiagonal},
    {SH_DONTLOSEANYFIGURES, LoseFiguresText, ReadLoseFigures},
    {SH_KEYSQUARE, KeySquareText, ReadKeySquare},
    {SH_ASSERTBLACKKINGSURROUNDED, SurroundedText, ReadSurrounded},
    {SH_KEYWHITEFIGURE, KeyFigureText, ReadKeyFigure},
    {SH_SKIPWORSTWHITEMOVES, SkipText, ReadSkip},
    {SH_DONTLETPROMOTEDFIGUREMOVE, PromotedText, ReadPromotedFigure},
    {SH_KEEPKINGNEARCORNER, CornerText, ReadCorner},
    {SH_SEASNAKE, SeaSnakeText, ReadSeaSnake},
}};

const TParameterFormat* FormatOf(uint32_t bit) {
    const auto found = std::ranges::find(kFormats, bit, &TParameterFormat::bit);
    return found == kFormats.end() ? nullptr : &*found;
}

// The pieces of a set's text between ", " separators outside brackets.
std::vector<std::string_view> SplitItems(std::string_view text) {
    std::vector<std::string_view> items;
    int depth = 0;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        depth += text[i] == '(' ? 1 : text[i] == ')' ? -1 : 0;
        if (depth == 0 && text.substr(i).starts_with(kItemSeparator)) {
            items.push_back(text.substr(start, i - start));
            start = i + kItemSeparator.size();
            ++i;
        }
    }
    items.push_back(text.substr(start));
    return items;
}

bool QuickModeShown(const THeuristicSet& set, const THeuristicTextContext& context) {
    const bool almostStrictException = set.Has(SH_KEEPKINGONTHEEDGE) &&
                                       set.params.kingMode == TKingMode::AlmostStrict &&
                                       context.m_nAlmostStrictPieces < 2;
    return context.m_bQuickMode && !set.Has(SH_FINDFORCEDMATE) && !almostStrictException;
}

}  // namespace

uint32_t ReadHeuristicItem(std::string_view item, THeuristicSet& set) {
    const auto display = std::ranges::find(kDisplayNames, item, &TDisplayName::displayed);
    if (display != kDisplayNames.end()) item = display->composed;
    const size_t open = item.find('(');
    if (open != std::string_view::npos && !item.ends_with(')'))
        throw ChessException("Closing bracket expected in heuristic \"" + std::string(item) + "\"");
    const std::string_view name = item.substr(0, open);
    if (name == HeuristicName(0)) return 0;
    const uint32_t bit = HeuristicFromName(name);
    if (!bit) throw ChessException("Unknown heuristic \"" + std::string(name) + "\"");
    set.Add(bit);
    const std::string_view text =
        open == std::string_view::npos ? std::string_view() : item.substr(open + 1, item.size() - open - 2);
    ReadHeuristicParameters(bit, text, set.params);
    return bit;
}

std::string HeuristicSquareText(Square square) {
    if (square >= 64) return {};
    return {static_cast<char>('A' + FileOf(square)), static_cast<char>('1' + RankOf(square))};
}

std::optional<Square> SquareFromText(std::string_view text) {
    if (text.size() != 2) return std::nullopt;
    const int file = std::tolower(static_cast<unsigned char>(text[0])) - 'a';
    const int rank = text[1] - '1';
    if (!OnBoard(file, rank)) return std::nullopt;
    return static_cast<Square>(MakeSquare(file, rank));
}

std::string_view FindForcedMateModeText(uint8_t mode) {
    return mode >= kFfmCheckOnly && mode <= kFfmThreat5 ? kFfmModes[mode - kFfmCheckOnly]
                                                        : std::string_view();
}

uint8_t FindForcedMateModeFromText(std::string_view text) {
    const auto found = std::ranges::find(kFfmModes, text);
    return found == kFfmModes.end() ? 0 : static_cast<uint8_t>(kFfmCheckOnly + (found - kFfmModes.begin()));
}

std::string HeuristicParameterText(uint32_t bit, const THeuristicParameters& params) {
    const TParameterFormat* format = FormatOf(bit);
    return format ? format->write(params) : std::string();
}

std::string HeuristicText(uint32_t bit, const THeuristicParameters& params) {
    std::string text(HeuristicName(bit));
    const std::string parameters = HeuristicParameterText(bit, params);
    if (!parameters.empty()) text += "(" + parameters + ")";
    for (const TDisplayName& name : kDisplayNames)
        if (text == name.composed) return std::string(name.displayed);
    return text;
}

std::string HeuristicSetText(const THeuristicSet& set, const THeuristicTextContext& context) {
    TItems items;
    for (int bit = 0; bit < kHeuristicBitCount; ++bit)
        if (set.Has(uint32_t{1} << bit)) items.push_back(HeuristicText(uint32_t{1} << bit, set.params));
    std::string text = Join(items, kItemSeparator);
    if (QuickModeShown(set, context)) (text += kItemSeparator) += kQuickModeItem;
    if (!set.params.dlfuDynamic) text += kNoDynamicDlfu;
    return text;
}

void ReadHeuristicParameters(uint32_t bit, std::string_view text, THeuristicParameters& params) {
    const TParameterFormat* format = FormatOf(bit);
    if (format)
        format->read(text, params);
    else if (!text.empty())
        Fail(bit, text);
}

THeuristicSetReading ReadHeuristicSetText(std::string_view text) {
    THeuristicSetReading reading;
    THeuristicSet& set = reading.m_set;
    if (text.ends_with(kNoDynamicDlfu)) {
        set.params.dlfuDynamic = false;
        text.remove_suffix(kNoDynamicDlfu.size());
    }
    bool edgeCarriesRelaxation = false;
    for (std::string_view item : SplitItems(text)) {
        if (item == kQuickModeItem) {
            reading.m_bQuickMode = true;
        } else if (!item.empty() && ReadHeuristicItem(item, set) == SH_KEEPKINGONTHEEDGE) {
            edgeCarriesRelaxation = HasRelaxationItems(set.params.edgeRelaxation);
        }
    }
    // Relaxation items printed with the ext.edge heuristic only: they were marked for it alone.
    if (set.Has(SH_KEEPKINGONTHEEDGE) && set.Has(SH_KEEPKINGWITHINEXTEDGE) && !edgeCarriesRelaxation &&
        HasRelaxationItems(set.params.edgeRelaxation))
        set.params.edgeRelaxation.extEdgeOnly = true;
    return reading;
}

}  // namespace moremate
