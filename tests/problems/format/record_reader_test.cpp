#include "problems/format/record_reader.h"

#include <gtest/gtest.h>

#include "core/fen.h"
#include "engine/heuristics/heuristic_names.h"
#include "problems/format/record_writer.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::ReadOne;

constexpr const char* kFen = "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1";
const std::string kBody = std::string("{\n\tFEN: ") + kFen + "\n}\n";

std::string HeaderLineOf(const ProblemEntry& entry) {
    const std::string record = WriteRecord(entry);
    return record.substr(1, record.find('\n', 1) - 1);
}

struct THeaderCase {
    const char* sName;
    const char* sHeader;
    ProblemType type;
    int nPlies;
    const char* sWritten;
    bool bLossless = true;  // false: the header holds options that are read but never written
};

class HeaderCases : public ::testing::TestWithParam<THeaderCase> {};

TEST_P(HeaderCases, StipulationAndOptionsReadAndWriteBack) {
    const THeaderCase& c = GetParam();
    const ProblemEntry entry = ReadOne(std::string(c.sHeader) + "\n" + kBody);
    EXPECT_EQ(entry.m_type, c.type);
    EXPECT_EQ(entry.m_nPlies, c.nPlies);
    EXPECT_EQ(HeaderLineOf(entry), c.sWritten);
    if (c.bLossless) {
        EXPECT_EQ(ReadOne(WriteRecord(entry)), entry);
    }
}

constexpr ProblemType kDirect = ProblemType::Directmate;
using H = THeaderCase;
// clang-format off
INSTANTIATE_TEST_SUITE_P(Records, HeaderCases, ::testing::Values(
    H{"Directmate", "1 #3", kDirect, 5, "1 #3"}, H{"Selfmate", "2 s#2", ProblemType::Selfmate, 5, "2 s#2"},
    H{"SelfmateSpaced", "3 S # 4", ProblemType::Selfmate, 9, "3 s#4"},
    H{"LongestDirectmate", "4 #127", kDirect, 253, "4 #127"},
    H{"NoStipulation", "5", ProblemType::Position, kPositionPlies, "5 "},
    H{"AllSolutionsSuffix", "6 #2allsolutions", kDirect, 3, "6 #2 AllSolutions"},
    H{"GuiCheckCountAnyCase", "8 #2 gUiChEcK 3", kDirect, 3, "8 #2 GUICHECK 3"},
    H{"GuiCheckWithoutCount", "8 #2 GUICHECK NOMIRROR", kDirect, 3, "8 #2 NoMirror GUICHECK"},
    H{"GuiCheckCountOneNotWritten", "8 #2 GUICHECKBESTDEFENCE 1", kDirect, 3, "8 #2 GUICHECKBESTDEFENCE"},
    H{"GuiCheckAuxWrittenAsGuiCheck", "8 #2 GuiCheckBestDefenceAndAux 2", kDirect, 3, "8 #2 GUICHECK 2", false},
    H{"StopOn4SolSharesItsFlag", "9 #2 StopOn4Sol", kDirect, 3, "9 #2 StopOn4Sol UsePredefinedSettings"},
    H{"ThreadsBelow255", "10 #2 threads 4", kDirect, 3, "10 #2 THREADS 4"},
    H{"Threads255IsNotGiven", "10 #2 THREADS 255", kDirect, 3, "10 #2"},
    H{"RequiresPerName", "11 #2 Requires KQK OnlyIfAvail KRK", kDirect, 3, "11 #2 Requires KQK Requires KRK"},
    H{"TableOrder", "12 #2 BruteForce RequiresSyzygy SafeMode UseVariantsAsSortIndications MirrorOnly", kDirect, 3,
        "12 #2 MirrorOnly UseVariantsAsSortIndications SAFEMODE RequiresSyzygy BruteForce"},
    H{"EveryWrittenFlag",
        "13 #2 HybridBruteForce AllSolutionsRequiresSyzygy StopOn3Sol StopOnDual AllSolutions " "NoMirror "
        "UseMainVariantAsSortIndications", kDirect, 3,
        "13 #2 NoMirror AllSolutions StopOnDual StopOn3Sol " "UseMainVariantAsSortIndications "
        "AllSolutionsRequiresSyzygy HybridBruteForce"},
    H{"UnwrittenOptions",
        "14 #2 DontRelaxHeuristics DontRunPassTwo StopRelaxHeuristicsOnFirstSolution " "SchedulerLevels 3 "
        "LichessLevels 0 GlobRegMB 512 NoGlobReg AllSolutionsRequires KQK SH_3MOVESTOMATE OFF", kDirect, 3, "14 #2",
        false}),
    [](const auto& info) { return std::string(info.param.sName); });
// clang-format on

TEST(Records, UnwrittenOptionsAreKept) {
    const ProblemEntry entry = ReadOne(
        "1 #2 DontRelaxHeuristics DontRunPassTwo StopRelaxHeuristicsOnFirstSolution SchedulerLevels 3 "
        "LichessLevels 0 GlobRegMB 512 NoGlobReg AllSolutionsRequires KQK AllSolutionsRequires KRK\n" +
        kBody);
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
        kBody);
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
        kBody;
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

TEST(Records, OtherAtLinesAndPlainCommentsAreIgnored) {
    const ProblemEntry entry = ReadOne("1 #2 //@other words\n/* note */ // more\n" + kBody);
    EXPECT_EQ(entry.m_annotations, TAnnotationLines{});
}

TEST(Records, FigureListsBuildTheSamePositionAsFen) {
    const ProblemEntry lists = ReadOne("1 #2 { desc: Lists\n wh: Ke1, Qa7 ,rh1 BLACK: kc1 }");
    const ProblemEntry fen = ReadOne("1 #2 { Description: Lists\n FEN: 8/Q7/8/8/8/8/8/2k1K2R w - - 0 1\n}");
    EXPECT_EQ(lists.m_position, fen.m_position);
    EXPECT_EQ(lists.m_sDescription, "Lists");
    EXPECT_EQ(WriteFen(lists.m_position.board), kFen);
}

TEST(Records, DescriptionIsTheRestOfTheLineInUtf8) {
    const ProblemEntry entry = ReadOne(
        "1 #2 { D:   Sch\xC3\xB6pfer /* not a comment */ 1927 \r\n FEN: " + std::string(kFen) + "\n}");
    EXPECT_EQ(entry.m_sDescription, "Sch\xC3\xB6pfer /* not a comment */ 1927 ");
}

TEST(Records, AnswersKeepTheirKindAndOrder) {
    const std::string position = "{ FEN: 6k1/P7/8/8/8/8/8/K7 w - - 0 1\n";
    const ProblemEntry full = ReadOne("1 #2 " + position + " Solution: a7-a8Q, A1:B2,a7-a8n }");
    EXPECT_EQ(full.m_answerKind, AnswerKind::Full);
    ASSERT_EQ(full.m_vAnswer.size(), 3u);
    EXPECT_EQ(full.m_vAnswer[0], (TMove{48, 56, kQueen}));
    EXPECT_EQ(full.m_vAnswer[1], (TMove{0, 9, 0}));
    EXPECT_EQ(full.m_vAnswer[2], (TMove{48, 56, kKnight}));
    EXPECT_NE(WriteRecord(full).find("\tAnswer: a7-a8Q, a1-b2, a7-a8N\n"), std::string::npos);

    const ProblemEntry sort = ReadOne("1 #2 " + position + " SWM: a1-b1 }");
    EXPECT_EQ(sort.m_answerKind, AnswerKind::ExpectedSort);
    const ProblemEntry sortOnly = ReadOne("1 #2 " + position + " ExpectedSortWhiteMovesOnly: a1-b1 }");
    EXPECT_EQ(sortOnly.m_answerKind, AnswerKind::ExpectedSortOnly);
    for (const ProblemEntry* entry : {&full, &sort, &sortOnly})
        EXPECT_EQ(ReadOne(WriteRecord(*entry)), *entry);
}

TEST(Records, CapturesAreWrittenWithAColonFromThePosition) {
    const ProblemEntry entry = ReadOne("1 #2 { FEN: 6n1/7P/8/8/8/8/8/K1k5 w - - 0 1\n A: h7-g8Q, h7:h8R }");
    EXPECT_NE(WriteRecord(entry).find("\tAnswer: h7:g8Q, h7-h8R\n"), std::string::npos);
}

TEST(Records, MovesOfAPositionArePlayedAndWrittenAsALine) {
    const ProblemEntry entry = ReadOne(
        "1 { FEN: r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n Moves: 1.Ke1-d1 Ke8-d8 2. Kd1-e1+ ... Kd8-e8\n}");
    ASSERT_EQ(entry.m_vMoves.size(), 4u);
    EXPECT_EQ(entry.m_vMoves[3], (TMove{59, 60, 0}));
    EXPECT_NE(WriteRecord(entry).find("   Moves:    1. Ke1-d1 Ke8-d8 2. Kd1-e1 Kd8-e8\n}"),
              std::string::npos);
    EXPECT_EQ(ReadOne(WriteRecord(entry)), entry);
}

TEST(Records, PositionWithoutStipulationKeepsBlackToMove) {
    const ProblemEntry entry = ReadOne("1 { FEN: 4k3/8/8/8/8/8/8/4K3 b - - 0 1\n Moves: 1. ... Ke8-d8\n}");
    EXPECT_FALSE(entry.m_position.board.WhiteToMove());
    EXPECT_EQ(WriteRecord(entry),
              "\n1 \n{\n\tFEN: 4k3/8/8/8/8/8/8/4K3 b - - 0 1\n   Moves:    1. ... Ke8-d8\n}\n");
}

TEST(Records, DirectmatesAreWhiteToMoveWhateverTheFenSays) {
    const ProblemEntry entry = ReadOne("1 #2 { FEN: 4k3/8/8/8/8/8/8/4K3 b - - 0 1\n}");
    EXPECT_TRUE(entry.m_position.board.WhiteToMove());
    EXPECT_EQ(entry.m_position.board.movesLeft, 3);
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

}  // namespace
}  // namespace moremate
