#include "predefined_heuristics.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <string>
#include <vector>

#include "core/chess_exception.h"
#include "heuristic_text.h"

namespace moremate {
namespace {

constexpr std::string_view kErrorPrefix = "Error occurred in ApplyPredefinedAdditionalHeuristics() : ";

// A token, or the argument between a token's brackets, with its index in the whole list.
struct TPiece {
    std::string_view text;
    size_t index = 0;
};

[[noreturn]] void Refuse(const std::string& reason) {
    throw ChessException(std::string(kErrorPrefix) + reason);
}

[[noreturn]] void RefuseToken(std::string_view token) {
    Refuse("Unrecognized token: " + std::string(token));
}

bool IsSeparator(char c) {
    return c == ',' || std::isspace(static_cast<unsigned char>(c));
}

// The tokens between blanks and commas; commas inside brackets belong to the token.
std::vector<TPiece> Tokens(std::string_view list) {
    std::vector<TPiece> tokens;
    int depth = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        if (depth == 0 && IsSeparator(list[i])) continue;
        if (tokens.empty() || (i > 0 && depth == 0 && IsSeparator(list[i - 1]))) tokens.push_back({{}, i});
        depth += list[i] == '(' ? 1 : list[i] == ')' ? -1 : 0;
        tokens.back().text = list.substr(tokens.back().index, i + 1 - tokens.back().index);
    }
    return tokens;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

// The squares of a DLFU argument ("h1,d5,e7"), at most eight.
void ApplyDlfu(TPiece argument, TPredefinedHeuristics& result) {
    THeuristicParameters& p = result.m_set.params;
    p.blockedCount = 0;
    p.dlfuEff = false;
    std::ranges::fill(p.blockedFigures, kNoSquare);
    for (size_t start = 0; start <= argument.text.size();) {
        const size_t end = std::min(argument.text.find(',', start), argument.text.size());
        const std::string_view square = argument.text.substr(start, end - start);
        if (square.size() != 2 || p.blockedCount == std::size(p.blockedFigures))
            Refuse("Invalid square description at index " + std::to_string(argument.index + start));
        const std::optional<Square> read = SquareFromText(square);
        if (!read) Refuse("Invalid square");
        p.blockedFigures[p.blockedCount++] = *read;
        start = end + 1;
    }
    result.m_set.Add(SH_DONTLETFIGUREUNBLOCK);
}

// "#n" with one digit from 1 to 9.
void ApplyQuickMateDepth(TPiece argument, TPredefinedHeuristics& result) {
    const std::string_view depth = argument.text;
    if (depth.size() != 2 || depth[0] != '#' || depth[1] < '1' || depth[1] > '9')
        RefuseToken("LFQMDepth(" + std::string(depth) + ")");
    result.m_set.params.quickMateDepth = static_cast<uint8_t>(depth[1] - '0');
}

void ApplySyzygyLevels(TPiece argument, TPredefinedHeuristics& result) {
    int levels = -1;
    const char* end = argument.text.data() + argument.text.size();
    const auto [stop, error] = std::from_chars(argument.text.data(), end, levels);
    if (error != std::errc() || stop != end || levels < 0)
        RefuseToken("SyzygyLevels(" + std::string(argument.text) + ")");
    result.m_nSyzygyLevels = levels;
}

void ApplyFfm(TPiece argument, TPredefinedHeuristics& result) {
    const uint8_t mode = FindForcedMateModeFromText(argument.text);
    if (!mode) RefuseToken("FFM(" + std::string(argument.text) + ")");
    result.m_set.params.ffm.mode = result.m_set.params.ffm.initialMode = mode;
    result.m_set.Add(SH_FINDFORCEDMATE);
}

void ApplySafeMode(TPiece, TPredefinedHeuristics& result) {
    result.m_bSafeModeForced = true;
}

void ApplyAssertBks(TPiece, TPredefinedHeuristics& result) {
    result.m_set.Add(SH_ASSERTBLACKKINGSURROUNDED);
}

void ApplyAssertBksStrict(TPiece, TPredefinedHeuristics& result) {
    result.m_set.Add(SH_ASSERTBLACKKINGSURROUNDED);
    result.m_set.params.surroundedStrict = true;
}

void ApplyExtEdge(TPiece, TPredefinedHeuristics& result) {
    result.m_set.Add(SH_KEEPKINGWITHINEXTEDGE);
}

void ApplyDontLetKingMove(TPiece, TPredefinedHeuristics& result) {
    result.m_set.Add(SH_KEEPKINGONTHEEDGE);
    result.m_set.params.kingMode = TKingMode::Strict;
}

void ApplyDontLetPromotedQueenMove(TPiece, TPredefinedHeuristics& result) {
    result.m_set.Add(SH_DONTLETPROMOTEDQUEENMOVE);
}

void ApplyNoDynamicDlfu(TPiece, TPredefinedHeuristics& result) {
    result.m_bDlfuForbidden = true;
    result.m_set.params.dlfuDynamic = false;
}

// A token as written, or a name followed by an argument in brackets.
struct TTokenRule {
    std::string_view name;
    bool bracketed;
    bool anyCase;
    void (*apply)(TPiece argument, TPredefinedHeuristics& result);
};
constexpr std::array<TTokenRule, 11> kRules = {{
    {"SafeMode", false, true, ApplySafeMode},
    {"AssertBKS", false, false, ApplyAssertBks},
    {"AssertBKS(strict)", false, true, ApplyAssertBksStrict},
    {"ExtEdge", false, false, ApplyExtEdge},
    {"DontLetKingMove", false, false, ApplyDontLetKingMove},
    {"DontLetPromotedQueenMove", false, false, ApplyDontLetPromotedQueenMove},
    {"!DLFU", false, false, ApplyNoDynamicDlfu},
    {"DLFU", true, false, ApplyDlfu},
    {"LFQMDepth", true, false, ApplyQuickMateDepth},
    {"SyzygyLevels", true, false, ApplySyzygyLevels},
    {"FFM", true, false, ApplyFfm},
}};

bool Matches(const TTokenRule& rule, std::string_view token) {
    if (rule.bracketed)
        return token.size() > rule.name.size() + 1 && token.starts_with(rule.name) &&
               token[rule.name.size()] == '(' && token.ends_with(')');
    return rule.anyCase ? EqualIgnoringCase(rule.name, token) : rule.name == token;
}

void ApplyToken(TPiece token, TPredefinedHeuristics& result) {
    const auto rule =
        std::ranges::find_if(kRules, [&](const TTokenRule& r) { return Matches(r, token.text); });
    if (rule == kRules.end()) RefuseToken(token.text);
    const size_t open = rule->bracketed ? rule->name.size() + 1 : token.text.size();
    const size_t length = rule->bracketed ? token.text.size() - open - 1 : 0;
    rule->apply({token.text.substr(open, length), token.index + open}, result);
}

}  // namespace

TPredefinedHeuristics ApplyPredefinedAdditionalHeuristics(const THeuristicSet& set, std::string_view tokens) {
    TPredefinedHeuristics result;
    result.m_set = set;
    for (const TPiece& token : Tokens(tokens)) ApplyToken(token, result);
    return result;
}

}  // namespace moremate
