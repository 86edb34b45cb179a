#include "problems/format/problem_lexer.h"

#include <gtest/gtest.h>

#include "tests/support/positions.h"

namespace moremate {
namespace {

TEST(Lexer, SplitsAsExpected) {
    using Lexes = std::vector<std::string>;
    // The text, whether special comment lines are asked for, and the lexemes.
    // clang-format off
    const struct { std::string text; bool specialLines; Lexes expected; } cases[] = {
        {"12 #3 Ke1,e2 a_b^c", false, {"12", "#", "3", "Ke1", ",", "e2", "a_b^c"}},
        {"h7:g8Q a7-f2", false, {"h7", ":", "g8Q", "a7", "-", "f2"}},  // moves split at their separator
        {std::string("\t1\r\n \xA0") + "2", false, {"1", "2"}},  // skipped bytes
        {"{}\xC3\xA9", false, {"{", "}", "\xC3", "\xA9"}},  // other bytes alone, even UTF-8
        {"1 /* a // b \n c */ 2", false, {"1", "2"}}, {"1 //#TAGS\n//!x\n2", false, {"1", "2"}},
        {"1 //#TAGS\r\n//!V x-y\n//#last", true, {"1", "//#TAGS", "//!V x-y", "//#last"}},
        {"//@tmpreg=12\n//@other words\n//@sortindications: a1-a2\n", true,
         {"//@tmpreg=12", "//@sortindications: a1-a2"}},  // only two kinds of @ lines
        {"// note\n//x\n1", true, {"1"}}, {"1 /* open", false, {"1"}},  // unclosed: the end when allowed
    };
    // clang-format on
    for (const auto& c : cases) {
        CProblemLexer lexer(c.text);
        Lexes lexemes;
        for (std::string lexeme; !(lexeme = lexer.Next(false, c.specialLines)).empty();)
            lexemes.push_back(lexeme);
        EXPECT_EQ(lexemes, c.expected) << c.text;
    }
    const std::pair<const char*, const char*> faults[] = {
        {"1 /x", "Unexpected lexem (slash)."},
        {"1 /", "Unexpected lexem (slash)."},
        {"1 2 ", "Unexpected end of file."},
        {"1 /* never closed *", "Unexpected end of file before comment closed."},
    };
    for (const auto& [text, message] : faults) {
        CProblemLexer lexer(text);
        EXPECT_EQ(test::ErrorOf([&] {
                      for (;;) lexer.Next(true, true);
                  }),
                  message);
    }
}

TEST(Lexer, RestOfLineIsVerbatimWithoutLineEnd) {
    CProblemLexer lexer("D: a /* b */ c\r\nnext");
    EXPECT_EQ(lexer.Next(true), "D");
    EXPECT_EQ(lexer.Next(true), ":");
    EXPECT_EQ(lexer.RestOfLine(), " a /* b */ c");
    EXPECT_EQ(lexer.Next(true), "next");
}

TEST(Lexer, IdentifierRequiredWhereNamed) {
    CProblemLexer lexer("KQK (");
    EXPECT_EQ(lexer.NextIdentifier(), "KQK");
    EXPECT_EQ(test::ErrorOf([&] { lexer.NextIdentifier(); }), "Alphanumeric identifier expected. Found: (");
}

TEST(Lexer, RewindReadsALexemeAgainAndLinesCount) {
    CProblemLexer lexer("a\nb\n\nc");
    lexer.Next(true);
    const size_t mark = lexer.Position();
    EXPECT_EQ(lexer.Next(true), "b");
    lexer.Rewind(mark);
    EXPECT_EQ(lexer.Next(true), "b");
    EXPECT_EQ(lexer.Next(true), "c");
    EXPECT_EQ(lexer.Line(), 4);
}

TEST(Lexer, NumbersAreDecimalAndFitIn32Bits) {
    EXPECT_EQ(ToNumber("0"), 0u);
    EXPECT_EQ(ToNumber("4294967295"), 4294967295u);
    EXPECT_FALSE(ToNumber("4294967296"));
    EXPECT_FALSE(ToNumber("3AllSolutions"));
    EXPECT_FALSE(ToNumber(""));
}

}  // namespace
}  // namespace moremate
