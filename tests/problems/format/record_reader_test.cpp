#include "problems/format/record_reader.h"

#include <gtest/gtest.h>

#include "core/fen.h"
#include "engine/heuristics/heuristic_names.h"
#include "problems/format/problem_lexer.h"
#include "problems/format/record_writer.h"
#include "tests/problems/problem_text.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using testing::kFen;
using testing::kRecordBody;
using testing::ReadOne;

// The stipulation and options of a header are read and written back, in the table's order.
TEST(Records, HeaderStipulationAndOptionsReadAndWriteBack) {
    constexpr ProblemType kDirect = ProblemType::Directmate, kSelf = ProblemType::Selfmate;
    // The header, its type and half-moves, the header written, and whether every option is written.
    // clang-format off
    const struct { std::string sHeader; ProblemType type; int nPlies; const char* sWritten; bool bLossless = true; }
        cases[] = {
        {"1 #3", kDirect, 5, "1 #3"}, {"2 s#2", kSelf, 5, "2 s#2"}, {"3 S # 4", kSelf, 9, "3 s#4"},
        {"4 #127", kDirect, 253, "4 #127"}, {"5", ProblemType::Position, kPositionPlies, "5 "},
        {"6 #2allsolutions", kDirect, 3, "6 #2 AllSolutions"}, {"8 #2 gUiChEcK 3", kDirect, 3, "8 #2 GUICHECK 3"},
        {"8 #2 GUICHECK NOMIRROR", kDirect, 3, "8 #2 NoMirror GUICHECK"},
        {"8 #2 GUICHECKBESTDEFENCE 1", kDirect, 3, "8 #2 GUICHECKBESTDEFENCE"},  // a count of one is not written
        {"8 #2 GuiCheckBestDefenceAndAux 2", kDirect, 3, "8 #2 GUICHECK 2", false},
        {"9 #2 StopOn4Sol", kDirect, 3, "9 #2 StopOn4Sol UsePredefinedSettings"},  // they share a flag
        {"10 #2 threads 4", kDirect, 3, "10 #2 THREADS 4"}, {"10 #2 THREADS 255", kDirect, 3, "10 #2"},
        {"11 #2 Requires KQK OnlyIfAvail KRK", kDirect, 3, "11 #2 Requires KQK Requires KRK"},
        {"12 #2 BruteForce RequiresSyzygy SafeMode UseVariantsAsSortIndications MirrorOnly", kDirect, 3,
         "12 #2 MirrorOnly UseVariantsAsSortIndications SAFEMODE RequiresSyzygy BruteForce"},
        {"13 #2 HybridBruteForce AllSolutionsRequiresSyzygy StopOn3Sol StopOnDual AllSolutions NoMirror "
         "UseMainVariantAsSortIndications", kDirect, 3, "13 #2 NoMirror AllSolutions StopOnDual StopOn3Sol "
         "UseMainVariantAsSortIndications AllSolutionsRequiresSyzygy HybridBruteForce"},
        {"14 #2 DontRelaxHeuristics DontRunPassTwo StopRelaxHeuristicsOnFirstSolution SchedulerLevels 3 "
         "LichessLevels 0 GlobRegMB 512 NoGlobReg AllSolutionsRequires KQK SH_3MOVESTOMATE OFF", kDirect, 3, "14 #2",
         false},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sHeader);
        const ProblemEntry entry = ReadOne(c.sHeader + "\n" + kRecordBody);
        EXPECT_EQ(entry.m_type, c.type);
        EXPECT_EQ(entry.m_nPlies, c.nPlies);
        const std::string record = WriteRecord(entry);
        EXPECT_EQ(record.substr(1, record.find('\n', 1) - 1), c.sWritten);
        EXPECT_TRUE(!c.bLossless || ReadOne(record) == entry);
    }
}

TEST(Records, UnwrittenOptionsAreKept) {
    const ProblemEntry entry = ReadOne(
        "1 #2 DontRelaxHeuristics DontRunPassTwo StopRelaxHeuristicsOnFirstSolution SchedulerLevels 3 "
        "LichessLevels 0 GlobRegMB 512 NoGlobReg AllSolutionsRequires KQK AllSolutionsRequires KRK\n" +
        kRecordBody);
    EXPECT_TRUE(entry.Has(kOptDontRelaxHeuristics));
    EXPECT_TRUE(entry.Has(kOptDontRunPassTwo));
    EXPECT_TRUE(entry.Has(kOptNoGlobReg));
    EXPECT_FALSE(entry.Has(kOptAllSolutions));
    EXPECT_TRUE(entry.m_bStopRelaxOnFirstSolution);
    EXPECT_EQ(entry.m_nSchedulerLevels, 3);
    EXPECT_EQ(entry.m_nLichessLevels, 0);
    EXPECT_EQ(entry.m_nGlobRegMB, 512);
    EXPECT_EQ(entry.m_vsAllSolutionsRequires, (std::vector<std::string>{"KQK", "KRK"}));
    EXPECT_TRUE(entry.m_vsRequires.empty());
}

TEST(Records, HeuristicOverridesAndBestDefenceVariant) {
    const ProblemEntry entry = ReadOne(
        "1 #4 sh_keepkingontheedge (STRICT,incl.corner) SH_3MovesToMate off "
        "SH_FINDFORCEDMATE(#2+-WithOtherHeuristics) LookForBestDefencesAfter( e2-e4 e7-e5 ;Ng1-f3 )\n" +
        kRecordBody);
    EXPECT_EQ(entry.m_nHeuristicsOff, SH_3MOVESTOMATE);
    EXPECT_EQ(entry.m_mapHeuristicParams,
              (std::map<uint32_t, std::string>{{SH_KEEPKINGONTHEEDGE, "STRICT,incl.corner"},
                                               {SH_FINDFORCEDMATE, "#2+-WithOtherHeuristics"}}));
    ASSERT_EQ(entry.m_mapVariantPairs.count(kBestDefenceVariantName), 1u);
    EXPECT_EQ(entry.m_mapVariantPairs.at(kBestDefenceVariantName),
              (TVariantPair{" e2-e4 e7-e5 ", "Ng1-f3 "}));
}

TEST(Records, AnnotationLinesAreKeptAndWrittenInOrder) {
    const std::string text =
        "1 #2 NoMirror\n"
        "//#TAGS\n//#1st prize\n//#miniature\n"
        "//!VARIANTS\n//!Main variant: 1. a7-f2\n//!ENDVARIANTS\n"
        "//@SortIndications: ~1. a7-f2+, b1-b2\n"
        "//@author note, not an annotation\n"
        "//@tmpreg=42\n" +
        kRecordBody;
    const ProblemEntry entry = ReadOne(text);
    const TAnnotationLines& lines = entry.m_annotations;
    EXPECT_EQ(lines.vsTags, (std::vector<std::string>{"1st prize", "miniature"}));
    EXPECT_EQ(lines.vsVariantLines, (std::vector<std::string>{"Main variant: 1. a7-f2"}));
    EXPECT_EQ(lines.sSortIndications, "~1. a7-f2+, b1-b2");
    EXPECT_EQ(lines.sTmpReg, "42");
    EXPECT_EQ(WriteRecord(entry),
              "\n1 #2 NoMirror\n//#TAGS\n//#1st prize\n//#miniature\n//!VARIANTS\n//!Main variant: 1. a7-f2\n"
              "//!ENDVARIANTS\n//@SortIndications: ~1. a7-f2+, b1-b2\n//@tmpreg=42\n{\n\tFEN: " +
                  std::string(kFen) + "\n}\n");
}

// Records read and written in the canonical layout, which reads back to the same record: figure lists
// give the FEN, a description is the rest of its line, answers keep their kind and order and take
// their capture marks from the position, played moves become a numbered line, a position without
// stipulation keeps Black to move, and directmates are White to move whatever the FEN says.
TEST(Records, ReadAndWrittenInTheCanonicalLayout) {
    const std::string position = "{ FEN: 6k1/P7/8/8/8/8/8/K7 w - - 0 1\n",
                      fen = "\tFEN: 6k1/P7/8/8/8/8/8/K7 w - - 0 1\n";
    const auto record = [](const std::string& header, const std::string& lines) {
        return "\n" + header + "\n{\n" + lines + "}\n";
    };
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"1 #2 { desc: Lists\n wh: Ke1, Qa7 ,rh1 BLACK: kc1 }",
         record("1 #2", "\tDescription: Lists\n\tFEN: " + kFen + "\n")},
        {"1 #2 { D:   Sch\xC3\xB6pfer /* not a comment */ 1927 \r\n FEN: " + kFen + "\n}",
         record("1 #2", "\tDescription: Sch\xC3\xB6pfer /* not a comment */ 1927 \n\tFEN: " + kFen + "\n")},
        {"1 #2 " + position + " Solution: a7-a8Q, A1:B2,a7-a8n }",
         record("1 #2", fen + "\tAnswer: a7-a8Q, a1-b2, a7-a8N\n")},
        {"1 #2 " + position + " SWM: a1-b1 }", record("1 #2", fen + "\tExpectedSortWhiteMoves: a1-b1\n")},
        {"1 #2 " + position + " ExpectedSortWhiteMovesOnly: a1-b1 }",
         record("1 #2", fen + "\tExpectedSortWhiteMovesOnly: a1-b1\n")},
        {"1 #2 { FEN: 6n1/7P/8/8/8/8/8/K1k5 w - - 0 1\n A: h7-g8Q, h7:h8R }",
         record("1 #2", "\tFEN: 6n1/7P/8/8/8/8/8/K1k5 w - - 0 1\n\tAnswer: h7:g8Q, h7-h8R\n")},
        {"1 { FEN: r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n Moves: 1.Ke1-d1 Ke8-d8 2. Kd1-e1+ ... Kd8-e8\n}",
         record("1 ", "\tFEN: r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n   Moves:    1. Ke1-d1 Ke8-d8 2. Kd1-e1 Kd8-e8\n")},
        {"1 { FEN: 4k3/8/8/8/8/8/8/4K3 b - - 0 1\n Moves: 1. ... Ke8-d8\n}",
         record("1 ", "\tFEN: 4k3/8/8/8/8/8/8/4K3 b - - 0 1\n   Moves:    1. ... Ke8-d8\n")},
        {"1 #2 { FEN: 4k3/8/8/8/8/8/8/4K3 b - - 0 1\n}", record("1 #2", "\tFEN: 4k3/8/8/8/8/8/8/4K3 w - - 0 1\n")},
    };
    // clang-format on
    for (const auto& [text, written] : cases) {
        const ProblemEntry entry = ReadOne(text);
        EXPECT_EQ(WriteRecord(entry), written) << text;
        EXPECT_EQ(ReadOne(WriteRecord(entry)), entry) << text;
    }
}

TEST(Records, ManyQueensAndPawnsAskBeforeLoading) {
    const std::string crowded = "{ FEN: 4k3/8/8/8/QQ6/PPPPPPPP/8/4K3 w - - 0 1\n}\n";
    const std::string normal = "{ FEN: 4k3/8/8/8/Q7/PPPPPPPP/8/4K3 w - - 0 1\n}\n";
    CRecordingReporter reporter;
    reporter.QueueAnswer(ReportAnswer::No);
    TCollectionReading reading;
    reading.questions.pReporter = &reporter;
    const std::vector<ProblemEntry> entries =
        testing::ReadAll("1 #2 " + crowded + "2 #2 " + normal + "3 #2 " + crowded, reading);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].m_nNumber, 2u);
    EXPECT_EQ(entries[1].m_nNumber, 3u);
    const auto reports = reporter.Reports();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].sTitle, "Question");
    EXPECT_EQ(reports[0].buttons, ReportButtons::YesNo);
    EXPECT_EQ(reports[0].sText,
              "Note: There are more than 9 queens and pawns of the same color. Program is able to properly "
              "handle only legal positions (in which no more than 218 moves are possible); otherwise its "
              "behaviour may be unpredictable.\nDo you want to continue anyway?");
}

const std::string kFenLine = " FEN: " + kFen + "\n";

// Every fault stops reading at its record with its message; the record before stays read.
TEST(Records, FaultsStopReadingAtTheirRecord) {
    // The second record of a collection and its fault.
    // clang-format off
    const std::pair<std::string, const char*> cases[] = {
        // Header and options
        {"2 #2X {" + kFenLine + "}", "Unrecognizable option: X"},
        {"2 # { " + kFenLine + "}", "Number of moves expected after #: {"},
        {"2 #0 { " + kFenLine + "}", "Unsupported number of moves: 0"},
        {"2 #128 { " + kFenLine + "}", "Unsupported number of moves: 128"},
        {"2 #2 Fast {" + kFenLine + "}", "Opening bracket expected { or unrecognized option encountered: Fast"},
        {"2 #2 GUICHECK 0 {" + kFenLine + "}",
        "Opening bracket expected { or unrecognized option encountered: 0"},
        {"2 #2 THREADS x {" + kFenLine + "}", "Number expected after THREADS: x"},
        {"2 #2 threads 256 {" + kFenLine + "}", "Number expected after threads: 256"},
        {"2 #2 Requires {" + kFenLine + "}", "Alphanumeric identifier expected. Found: {"},
        {"2 #2 sh_keepkingontheedge ON {" + kFenLine + "}",
        "Unexpected lexem after SH_KEEPKINGONTHEEDGE: ON (expected opening bracket or OFF)"},
        {"2 #2 SH_KEYLINE (A {" + kFenLine + "}",
        "Unexpected lexems after SH_KEYLINE (closing bracket not found)"},
        {"2 #2 LookForBestDefencesAfter e2 {" + kFenLine + "}",
        "Unexpected lexem after LookForBestDefencesAfter (expected opening bracket)"},
        {"2 #2 LookForBestDefencesAfter (e2-e4;e7-e5 {" + kFenLine + "}",
        "Unexpected lexems after LookForBestDefencesAfter (closing bracket not found)"},
        {"2 #2 LookForBestDefencesAfter (a;b;c) {" + kFenLine + "}",
        "Unexpected lexems after LookForBestDefencesAfter (expected exactly one semicolon between the brackets)"},
        {"2 #2\n//@tmpreg=5\n//!VARIANTS\n//!ENDVARIANTS\n{" + kFenLine + "}", "Opening bracket expected."},
        // Description and position
        {"2 #2 { Desc - x\n" + kFenLine + "}", "Colon ':' expected after description identifier."},
        {"2 #2 { FEN 8/8/8/8/8/8/8/8 }", "Colon ':' expected after FEN identifier."},
        {"2 #2 { FEN: 8/8/8 w - - 0 1\n}", "Improper FEN code: piece placement (first field): 3 ranks, 8 expected"},
        {"2 #2 { FEN: 8/8/8/8/8/8/8/8 w - - 0 1\n}", "Illegal number of kings."},
        {"2 #2 { Desc: x\n Black: Ke8 }", "White figures identifier expected (W, WH or WHITE)."},
        {"2 #2 { White Ke1 }", "Colon ':' expected after white figures identifier."},
        {"2 #2 { White: Ke1 Blk: Ke8 }", "Black figures identifier expected (B, BL or BLACK)."},
        {"2 #2 { W: Ke1 B Ke8 }", "Colon expected after black figures identifier."},
        {"2 #2 { W: Xe1 B: Ke8 }", "White figure specification is invalid: Xe1"},
        {"2 #2 { W: Ke B: Ke8 }", "White figure specification is invalid: Ke"},
        {"2 #2 { W: Ki9 B: Ke8 }", "White figure position is invalid: Ki9"},
        {"2 #2 { W: Ke1 B: Ze8 }", "Black figure specification is invalid: Ze8"},
        {"2 #2 { W: Ke1 B: Kz8 }", "Black figure position is invalid: Kz8"},
        {"2 #2 { W: Ke1, Ke1 B: Ke8 }", "Square e1 already occupied."},
        {"2 #2 { W: Ke1, QE8 B: Ke8 }", "Square e8 already occupied."},
        {"2 #2 { W: Ke1, Kd1 B: Ke8 }", "Illegal number of kings."},
        // Moves and answer
        {"2 #2 {" + kFenLine + " Moves a7-a8 }", "Colon expected after Moves section start."},
        {"2 {" + kFenLine + " Moves: 1. Qa7-b6 Kc1-d1\n}", "Invalid move in MakeMove() : Kc1-d1"},
        {"2 #2 {" + kFenLine + " Answer a7-f2 }", "Colon expected after correct answer identifier."},
        {"2 #2 {" + kFenLine + " Answer: a9-f2 }", "Invalid correct answer ('from' element): a9"},
        {"2 #2 {" + kFenLine + " A: a7 f2 }", "Hyphen expected to separate correct answer elements"},
        {"2 #2 {" + kFenLine + " A: a7-f }", "Invalid correct answer ('to' element): f"},
        {"2 #2 {" + kFenLine + " A: a7-a8X }", "Invalid correct answer: a7-a8X"},
        {"2 #2 {" + kFenLine + " A: a7-a8K }", "Invalid correct answer: a7-a8K"},
        {"2 #2 {" + kFenLine + " A: a7-f2 h1-h3 }",
        "Comma should separate various solutions of the problem, but encountered: h1"},
        {"2 #2 {" + kFenLine + " Solved }", "Closing bracket expected."},
    };
    // clang-format on
    for (const auto& [record, message] : cases) {
        SCOPED_TRACE(record);
        std::vector<ProblemEntry> entries;
        try {
            ReadCollectionText(("1 #2\n" + kRecordBody) + record + "\n" + ("1 #2\n" + kRecordBody), entries,
                               {});
            ADD_FAILURE() << "no fault raised";
        } catch (const CCollectionReadError& error) {
            EXPECT_STREQ(error.what(), message);
            EXPECT_EQ(error.Record(), 2u);
            EXPECT_EQ(error.Problem(), 2u);
            EXPECT_GE(error.Line(), 5);
        }
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_EQ(entries[0].m_nNumber, 1u);
    }
    EXPECT_EQ(testing::ReadError(("1 #2\n" + kRecordBody) + "2 #2 {" + kFenLine), "Unexpected end of file.");
    EXPECT_EQ(testing::ReadError(("1 #2\n" + kRecordBody) + "2 #2 NoMirror"), "Unexpected end of file.");
    EXPECT_EQ(testing::ReadError(("1 #2\n" + kRecordBody) + "x #2 {" + kFenLine + "}"),
              "Problem number expected. Found: x");
}

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

TEST(Lexer, IdentifierRequiredWhereNamed) {
    CProblemLexer lexer("KQK (");
    EXPECT_EQ(lexer.NextIdentifier(), "KQK");
    EXPECT_EQ(test::ErrorOf([&] { lexer.NextIdentifier(); }), "Alphanumeric identifier expected. Found: (");
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
