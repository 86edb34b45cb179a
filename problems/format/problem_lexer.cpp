#include "problem_lexer.h"

#include <algorithm>

#include "core/chess_exception.h"

namespace moremate {
namespace {

bool IsBlank(unsigned char c) {
    return c == 9 || c == 10 || c == 13 || c == 32 || c == 160;
}

bool IsLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool IsIdentifierChar(char c) {
    return IsLetterOrDigit(c) || c == '_' || c == '^';
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string WithoutCarriageReturn(std::string_view text) {
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    return std::string(text);
}

// Of the "//@" lines only these two are lexemes; all others are comments.
bool IsSpecialAtLine(std::string_view line) {
    return StartsWithIgnoringCase(line, "//@SortIndications") || StartsWithIgnoringCase(line, "//@tmpreg=");
}

}  // namespace

bool IsIdentifier(std::string_view lexeme) {
    return !lexeme.empty() && IsLetterOrDigit(lexeme[0]) && std::ranges::all_of(lexeme, IsIdentifierChar);
}

std::optional<uint32_t> ToNumber(std::string_view lexeme) {
    if (lexeme.empty() || lexeme.size() > 10) return std::nullopt;
    uint64_t value = 0;
    for (char c : lexeme) {
        if (c < '0' || c > '9') return std::nullopt;
        value = 10 * value + static_cast<uint64_t>(c - '0');
    }
    if (value > UINT32_MAX) return std::nullopt;
    return static_cast<uint32_t>(value);
}

std::string ToUpper(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), Upper);
    return upper;
}

bool IsOneOf(std::string_view lexeme, std::initializer_list<const char*> upperNames) {
    const std::string upper = ToUpper(lexeme);
    return std::ranges::any_of(upperNames, [&](const char* name) { return upper == name; });
}

std::string WithoutLeadingBlanks(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && ToUpper(text.substr(0, prefix.size())) == ToUpper(prefix);
}

std::string CProblemLexer::Next(bool endIsError, bool specialLines) {
    for (;;) {
        SkipBlanks();
        if (m_nPos >= m_text.size()) {
            if (endIsError) throw ChessException("Unexpected end of file.");
            return {};
        }
        const char c = m_text[m_nPos];
        if (IsLetterOrDigit(c)) return Identifier();
        if (c != '/') {
            ++m_nPos;
            return std::string(1, c);
        }
        const char following = m_nPos + 1 < m_text.size() ? m_text[m_nPos + 1] : '\0';
        if (following == '*') {
            if (!SkipBlockComment() && endIsError)
                throw ChessException("Unexpected end of file before comment closed.");
            continue;
        }
        if (following != '/') throw ChessException("Unexpected lexem (slash).");
        std::string line = LineComment(specialLines);
        if (!line.empty()) return line;
    }
}

std::string CProblemLexer::NextIdentifier() {
    std::string lexeme = Next(true);
    if (!IsIdentifier(lexeme)) throw ChessException("Alphanumeric identifier expected. Found: " + lexeme);
    return lexeme;
}

std::string CProblemLexer::RestOfLine() {
    const size_t end = std::min(m_text.find('\n', m_nPos), m_text.size());
    const std::string_view line = m_text.substr(m_nPos, end - m_nPos);
    m_nPos = end;
    return WithoutCarriageReturn(line);
}

bool CProblemLexer::TextUpTo(char closing, std::string& text) {
    const size_t end = m_text.find(closing, m_nPos);
    if (end == std::string_view::npos) return false;
    text = std::string(m_text.substr(m_nPos, end - m_nPos));
    m_nPos = end + 1;
    return true;
}

int CProblemLexer::Line() const {
    return 1 + static_cast<int>(std::count(m_text.begin(), m_text.begin() + m_nPos, '\n'));
}

void CProblemLexer::SkipBlanks() {
    while (m_nPos < m_text.size() && IsBlank(static_cast<unsigned char>(m_text[m_nPos]))) ++m_nPos;
}

std::string CProblemLexer::Identifier() {
    const size_t start = m_nPos;
    while (m_nPos < m_text.size() && IsIdentifierChar(m_text[m_nPos])) ++m_nPos;
    return std::string(m_text.substr(start, m_nPos - start));
}

// Returns the line when it is a special line and those are requested, else an empty text.
std::string CProblemLexer::LineComment(bool specialLines) {
    std::string line = RestOfLine();
    const char marker = line.size() > 2 ? line[2] : '\0';
    const bool special = marker == '!' || marker == '#' || (marker == '@' && IsSpecialAtLine(line));
    return specialLines && special ? line : std::string();
}

bool CProblemLexer::SkipBlockComment() {
    const size_t end = m_text.find("*/", m_nPos + 2);
    m_nPos = end == std::string_view::npos ? m_text.size() : end + 2;
    return end != std::string_view::npos;
}

}  // namespace moremate
