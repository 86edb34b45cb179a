// The lexer of problem files. It works on the UTF-8 bytes and hands out one lexeme at a time:
// identifiers over letters, digits, "_" and "^" (so "e2", "Ke1" and "12" are single lexemes),
// single-character lexemes for everything else, and, on request, the special comment lines
// "//#...", "//!...", "//@SortIndications..." and "//@tmpreg=..." whole. Comments are skipped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace moremate {

class CProblemLexer {
  public:
    explicit CProblemLexer(std::string_view text) : m_text(text) {}

    // The next lexeme. At end of text it throws "Unexpected end of file." when `endIsError`,
    // otherwise it returns an empty lexeme.
    std::string Next(bool endIsError, bool specialLines = false);
    // The next lexeme, which must be an identifier: else "Alphanumeric identifier expected. Found: ".
    std::string NextIdentifier();
    // The rest of the current line verbatim, without its line end.
    std::string RestOfLine();
    // The raw text up to the next `closing` byte, which is consumed; false (and nothing consumed)
    // when there is no such byte.
    bool TextUpTo(char closing, std::string& text);

    // Positions for reading a lexeme again.
    size_t Position() const { return m_nPos; }
    void Rewind(size_t position) { m_nPos = position; }
    // The line (from 1) at which the lexer stands.
    int Line() const;

  private:
    void SkipBlanks();
    std::string Identifier();
    std::string LineComment(bool specialLines);
    // Skips a block comment; false when it is not closed.
    bool SkipBlockComment();

    std::string_view m_text;
    size_t m_nPos = 0;
};

bool IsIdentifier(std::string_view lexeme);
// The value of a decimal lexeme; nothing when it holds anything but digits or exceeds 32 bits.
std::optional<uint32_t> ToNumber(std::string_view lexeme);
std::string ToUpper(std::string_view text);
// Whether `lexeme` in upper case is one of `upperNames`.
bool IsOneOf(std::string_view lexeme, std::initializer_list<const char*> upperNames);
std::string WithoutLeadingBlanks(std::string_view text);
bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix);

}  // namespace moremate
