#include "problems/format/problem_lexer.h"

#include <gtest/gtest.h>

#include "core/chess_exception.h"

namespace moremate {
namespace {

std::vector<std::string> Lexemes(std::string_view text, bool specialLines) {
    CProblemLexer lexer(text);
    std::vector<std::string> lexemes;
    for (std::string lexeme = lexer.Next(false, specialLines); !lexeme.empty();
         lexeme = lexer.Next(false, specialLines))
        lexemes.push_back(lexeme);
    return lexemes;
}

using Lexes = std::vector<std::string>;

struct TLexCase {
    const char* sName;
    std::string text;
    bool specialLines;
    Lexes expected;
};

class LexerCases : public ::testing::TestWithParam<TLexCase> {};

TEST_P(LexerCases, SplitsAsExpected) {
    EXPECT_EQ(Lexemes(GetParam().text, GetParam().specialLines), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Lexer, LexerCases,
    ::testing::Values(
        TLexCase{"Identifiers", "12 #3 Ke1,e2 a_b^c", false,
                 Lexes{"12", "#", "3", "Ke1", ",", "e2", "a_b^c"}},
        TLexCase{"MoveSplitsAtSeparator", "h7:g8Q a7-f2", false, Lexes{"h7", ":", "g8Q", "a7", "-", "f2"}},
        TLexCase{"SkippedBytes", std::string("\t1\r\n \xA0") + "2", false, Lexes{"1", "2"}},
        TLexCase{"OtherBytesAloneEvenUtf8", "{}\xC3\xA9", false, Lexes{"{", "}", "\xC3", "\xA9"}},
        TLexCase{"BlockComment", "1 /* a // b \n c */ 2", false, Lexes{"1", "2"}},
        TLexCase{"LineCommentsSkippedWithoutRequest", "1 //#TAGS\n//!x\n2", false, Lexes{"1", "2"}},
        TLexCase{"SpecialLinesWholeOnRequest", "1 //#TAGS\r\n//!V x-y\n//#last", true,
                 Lexes{"1", "//#TAGS", "//!V x-y", "//#last"}},
        TLexCase{"AtLinesOnlyTwoKinds", "//@tmpreg=12\n//@other words\n//@sortindications: a1-a2\n", true,
                 Lexes{"//@tmpreg=12", "//@sortindications: a1-a2"}},
        TLexCase{"PlainLineCommentNeverReturned", "// note\n//x\n1", true, Lexes{"1"}},
        TLexCase{"UnclosedCommentIsEndWhenAllowed", "1 /* open", false, Lexes{"1"}}),
    [](const auto& info) { return std::string(info.param.sName); });

struct TLexFault {
    const char* sName;
    const char* sText;
    const char* sMessage;
};

class LexerFaults : public ::testing::TestWithParam<TLexFault> {};

TEST_P(LexerFaults, RaiseTheirMessage) {
    CProblemLexer lexer(GetParam().sText);
    try {
        for (;;) lexer.Next(true, true);
    } catch (const ChessException& error) {
        EXPECT_STREQ(error.what(), GetParam().sMessage);
        return;
    }
}

INSTANTIATE_TEST_SUITE_P(Lexer, LexerFaults,
                         ::testing::Values(TLexFault{"SlashBeforeLetter", "1 /x",
                                                     "Unexpected lexem (slash)."},
                                           TLexFault{"SlashAtEnd", "1 /", "Unexpected lexem (slash)."},
                                           TLexFault{"EndOfText", "1 2 ", "Unexpected end of file."},
                                           TLexFault{"UnterminatedComment", "1 /* never closed *",
                                                     "Unexpected end of file before comment closed."}),
                         [](const auto& info) { return std::string(info.param.sName); });

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
    try {
        lexer.NextIdentifier();
        FAIL();
    } catch (const ChessException& error) {
        EXPECT_STREQ(error.what(), "Alphanumeric identifier expected. Found: (");
    }
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
