#include "settings/options_dialog.h"

#include <gtest/gtest.h>

#include "settings/ini_file.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;
using TNotes = std::vector<std::string>;

constexpr int kCurrentThreads = 4;

// The dialog's fields, as it opens on the default options with 4 threads, and what its check says:
// the first failure, or the notes.
TEST(OptionsDialogCheck, GivesFirstFailureOrNotes) {
    struct TDialogCase {
        std::string sPrecalcRatio = "20", sTempRegRatio = "20", sSchedulerLevels = "6", sLichessLevels = "1";
        int nThreads = kCurrentThreads, nLevels = 1;
        std::string sAutoSaveMinutes = "240";
        bool bLogMoves = false, bCustomScheduler = true;
        std::string sFailure = {};
        TNotes notes = {};
    };
    // clang-format off
    const TDialogCase cases[] = {
        {.sPrecalcRatio = "101", .sFailure = kBadPrecalcMemRatio},
        {.sPrecalcRatio = "20%", .sFailure = kBadPrecalcMemRatio},
        {.sTempRegRatio = "-1", .sFailure = kBadTempRegMemRatio},
        {.sPrecalcRatio = "x", .sTempRegRatio = "x", .sFailure = kBadPrecalcMemRatio},  // the first of two
        {.sSchedulerLevels = "10", .sFailure = kBadSchedulerLevels},
        {.sLichessLevels = "-2", .sFailure = kBadLichessLevels},
        {.sLichessLevels = "256", .sFailure = kBadLichessLevels},
        {.nThreads = 64, .nLevels = 3, .sFailure = kTooManyThreads},
        {.nThreads = 2, .nLevels = 100, .sFailure = kTooManyThreads},  // adjusted levels still too many
        {.sAutoSaveMinutes = "-1", .sFailure = kBadAutoSave},
        {}, {.sSchedulerLevels = " 3 "}, {.sLichessLevels = "-1"},
        {.nThreads = 64, .nLevels = 2, .notes = {kThreadsNotSaved}}, {.nThreads = 0, .notes = {kThreadsNotSaved}},
        {.nLevels = 0, .notes = {kMultithreadingLevelsAdjusted}},
        {.sSchedulerLevels = "0", .notes = {kCustomSchedulerOff}}, {.sSchedulerLevels = "0", .bCustomScheduler = false},
        {.bLogMoves = true, .notes = {kSchedulerWithFullLog}},
        {.sSchedulerLevels = "0", .nThreads = 1, .nLevels = 65, .bLogMoves = true,  // in the order of the checks
          .notes = {kMultithreadingLevelsAdjusted, kThreadsNotSaved, kCustomSchedulerOff}},
    };
    // clang-format on
    for (size_t i = 0; i < std::size(cases); ++i) {
        const TDialogCase& c = cases[i];
        TOptionsDialogFields fields = OptionsDialogFields(TOptions{}, kCurrentThreads);
        fields.sMaxMemRatioForPrecalculatedData = c.sPrecalcRatio;
        fields.sMaxMemRatioForTempReg = c.sTempRegRatio;
        fields.sSchedulerLevels = c.sSchedulerLevels;
        fields.sLichessLevels = c.sLichessLevels;
        fields.nThreads = c.nThreads;
        fields.nMultithreadingLevels = c.nLevels;
        fields.sAutoSaveMinutes = c.sAutoSaveMinutes;
        fields.options.m_bLogMoves = c.bLogMoves;
        fields.options.m_bCustomScheduler = c.bCustomScheduler;
        const TOptionsDialogCheck check = CheckOptionsDialog(fields, kCurrentThreads);
        EXPECT_EQ(check.sFailure, c.sFailure) << "case " << i;
        EXPECT_EQ(check.notes, c.notes) << "case " << i;
    }
}

TEST(OptionsDialogCheck, TakesTypedValues) {
    TOptionsDialogFields fields = OptionsDialogFields(TOptions{}, kCurrentThreads);
    fields.sMaxMemRatioForPrecalculatedData = "50";
    fields.sSchedulerLevels = "9";
    fields.nThreads = 100;
    fields.nMultithreadingLevels = 2;
    fields.nSolutionDetailsMoves = 0;
    fields.options.m_nMultithreadingLevels = 0;  // the typed level count replaces it
    TOptionsDialogCheck check = CheckOptionsDialog(fields, kCurrentThreads);
    ASSERT_EQ(check.sFailure, "");
    EXPECT_EQ(check.options.m_nMaxMemRatioForPrecalculatedData, 50);
    EXPECT_EQ(check.options.m_nSchedulerLevels, 9);
    EXPECT_EQ(check.nThreads, 64);
    EXPECT_EQ(check.options.m_nMultithreadingLevels, 2);
    EXPECT_EQ(check.options.m_shSolutionDetailsMoves, 10);
}

class OptionsDialogSave : public ::testing::Test {
  protected:
    CTempFolder m_folder;
    std::filesystem::path m_path = m_folder.File("options.ini");
    CRecordingReporter m_reporter;
    TOptions m_options = ReadOptions(m_path, m_reporter, 1ull << 32);
    int m_nThreads = kCurrentThreads;
};

TEST_F(OptionsDialogSave, FailureRestoresEarlierValuesAndWritesNothing) {
    TOptionsDialogFields fields = OptionsDialogFields(m_options, m_nThreads);
    fields.sMaxMemRatioForPrecalculatedData = "60";  // valid, but a later field fails
    fields.sAutoSaveMB = "-5";
    fields.nThreads = 8;
    TOptions before = m_options;
    EXPECT_FALSE(SaveOptionsDialog(fields, m_options, m_nThreads, m_path, m_reporter));
    EXPECT_EQ(m_options, before);
    EXPECT_EQ(m_options.PrecalcQuotaBytes(), (1ull << 32) / 5);
    EXPECT_EQ(m_nThreads, kCurrentThreads);
    EXPECT_FALSE(std::filesystem::exists(m_path));
    ASSERT_EQ(m_reporter.Reports().size(), 1u);
    EXPECT_EQ(m_reporter.Reports()[0].sText, kBadAutoSave);
}

TEST_F(OptionsDialogSave, SavedLevelsReadBackAsOne) {
    TOptionsDialogFields fields = OptionsDialogFields(m_options, m_nThreads);
    fields.nMultithreadingLevels = 2;
    fields.sMaxMemRatioForPrecalculatedData = "60";
    ASSERT_TRUE(SaveOptionsDialog(fields, m_options, m_nThreads, m_path, m_reporter));
    EXPECT_EQ(m_options.m_nMultithreadingLevels, 2);
    EXPECT_EQ(m_options.PrecalcQuotaBytes(), (1ull << 32) * 60 / 100);
    EXPECT_EQ(CIniFile(m_path).ReadInt(kOptionsSection, "MultithreadingLevels", 0), 2);
    EXPECT_EQ(ReadOptions(m_path, m_reporter).m_nMultithreadingLevels, 1);
}

TEST_F(OptionsDialogSave, SchedulerLevelZeroFromFileSurvivesUnchangedSave) {
    m_folder.Write("options.ini", "[chess]\nSchedulerLevels=0\n");
    m_options = ReadOptions(m_path, m_reporter);
    ASSERT_TRUE(SaveOptionsDialog(OptionsDialogFields(m_options, m_nThreads), m_options, m_nThreads, m_path,
                                  m_reporter));
    EXPECT_TRUE(m_reporter.Reports().empty());
    EXPECT_EQ(CIniFile(m_path).ReadInt(kOptionsSection, "SchedulerLevels", -9), 0);
}

TEST_F(OptionsDialogSave, NotesAreInformationInTheUsersLanguage) {
    m_options.m_nLanguageId = kPolish;
    TOptionsDialogFields fields = OptionsDialogFields(m_options, m_nThreads);
    fields.sSchedulerLevels = "0";
    ASSERT_TRUE(SaveOptionsDialog(fields, m_options, m_nThreads, m_path, m_reporter));
    ASSERT_EQ(m_reporter.Reports().size(), 1u);
    EXPECT_EQ(m_reporter.Reports()[0].sTitle, "Informacja");
    EXPECT_EQ(m_reporter.Reports()[0].sText, kCustomSchedulerOff);
}

TEST_F(OptionsDialogSave, WriteFailureIsReportedAfterTakingValues) {
    std::filesystem::path unwritable = m_folder.File("missing") / "options.ini";
    TOptionsDialogFields fields = OptionsDialogFields(m_options, m_nThreads);
    fields.sAutoSaveMinutes = "30";
    EXPECT_TRUE(SaveOptionsDialog(fields, m_options, m_nThreads, unwritable, m_reporter));
    EXPECT_EQ(m_options.m_nAutoSaveMinutes, 30);
    ASSERT_EQ(m_reporter.Reports().size(), 1u);
    EXPECT_EQ(m_reporter.Reports()[0].sTitle, "Error");
    EXPECT_EQ(m_reporter.Reports()[0].sText, kErrorWritingOptions);
}

}  // namespace
}  // namespace moremate
