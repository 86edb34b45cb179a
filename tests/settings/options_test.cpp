#include "settings/options.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "settings/ini_file.h"
#include "settings/options_dialog.h"
#include "settings/program_folder.h"
#include "tests/support/hostile_files.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;
using testing::kHostileKinds;
using testing::MakeHostileFile;
using testing::THostileKind;

using TReports = std::vector<std::pair<std::string, std::string>>;

constexpr uint64_t kGiB = 1024ull * 1024 * 1024;

TReports Reports(const CRecordingReporter& reporter) {
    TReports reports = {};
    for (const auto& report : reporter.Reports()) reports.emplace_back(report.sTitle, report.sText);
    return reports;
}

#define FIELD(m) [](const TOptions& o) -> long long { return static_cast<long long>(o.m); }
TEST(OptionsRead, SettlesValuesAndReports) {
    // The lines of section "chess", a value read and what it must be, the reports given.
    // clang-format off
    const struct { std::string sChess; long long (*value)(const TOptions&); long long nExpected; TReports reports; }
        cases[] = {
        {"SchedulerLevels=0\n", FIELD(m_nSchedulerLevels), 1, {}},  // one level
        {"SchedulerLevels=-1\n", FIELD(m_nSchedulerLevels), 0, {}},  // off
        {"MultithreadingLevels=3\n", FIELD(m_nMultithreadingLevels), 1, {}},
        {"MultithreadingLevels=0\n", FIELD(m_nMultithreadingLevels), 0, {}},
        {"UseMainVariantAsSortIndications=7\n", FIELD(m_nUseMainVariantAsSortIndications), 2, {}},
        {"AskForGlobalRegisterRecompression=3\nUseDataPackedForRandomAccess=2\n",
         FIELD(m_byAskForGlobalRegisterRecompression), 2, {{"Warning", kRecompressionAboveRandomAccess}}},
        {"AskForGlobalRegisterRecompression=1\nUseDataPackedForRandomAccess=1\n",
         FIELD(m_byAskForGlobalRegisterRecompression), 1, {}},
        // Custom logging turns the full log on after its warning would have been given.
        {"CustomLogging=5\n", FIELD(m_bLogMoves), 1, {{"Information", kCustomLoggingOn}}},
        {"LogMoves=1\nCustomLogging=1\nLanguageId=0\n", FIELD(m_bLogMoves), 1,
         {{"Warning", kFullLogOnAtStart}, {"Informacja", kCustomLoggingOn}}},
        {"LanguageId=2\nCustomLogging=1\n", FIELD(m_nLanguageId), 2, {{"Інформація", kCustomLoggingOn}}},
        {"AutoSaveMinutes=abc\n", FIELD(m_nAutoSaveMinutes), 0, {}},
        {"PrecalcPath=" + std::string(300, 'p') + "\n", FIELD(m_sPrecalcPath.size()), 255, {}},
    };
    // clang-format on
    for (const auto& c : cases) {
        CTempFolder folder;
        CRecordingReporter reporter;
        TOptions options = ReadOptions(folder.Write("options.ini", "[chess]\n" + c.sChess), reporter, kGiB);
        EXPECT_EQ(c.value(options), c.nExpected) << c.sChess;
        EXPECT_EQ(Reports(reporter), c.reports) << c.sChess;
    }
}
#undef FIELD

TEST(OptionsRead, KeysOnlyEditedByHand) {
    CTempFolder folder;
    CRecordingReporter reporter;
    std::filesystem::path path = folder.Write(
        "options.ini",
        "[chess]\nLanguageId=0\nWarningOnLichessDataRepetition=1\nCheckTempRegCoherency=1\n"
        "AskForGlobalRegisterRecompression=1\nUseDataPackedForRandomAccess=1\nPrecalcPath=/data\n"
        "AskIfSaveAfterDecompressAllToMem=1\nLogToFileTmpRegLoad=1\nCustomizedVersion=1\n"
        "ScalingWarningDismissed=1\nExtendedTempRegDetails=1\nAddTestCrashHandlerMenuItem=1\n"
        "UseSystemCrashHandler=1\nMaxStipulationForBulkInsert=9\nShortRegTestSeconds="
        "30\nRunRegressionTestInLoop=1\n");
    TOptions expected;
    expected.m_nLanguageId = kPolish;
    expected.m_bWarningOnLichessDataRepetition = expected.m_bCheckTempRegCoherency = true;
    expected.m_byAskForGlobalRegisterRecompression = expected.m_byUseDataPackedForRandomAccess = 1;
    expected.m_sPrecalcPath = "/data";
    expected.m_bAskIfSaveAfterDecompressAllToMem = expected.m_bLogToFileTmpRegLoad = true;
    expected.m_bCustomizedVersion = expected.m_bScalingWarningDismissed = expected.m_bExtendedTempRegDetails =
        true;
    expected.m_bAddTestCrashHandlerMenuItem = expected.m_bUseSystemCrashHandler = true;
    expected.m_bRunRegressionTestInLoop = true;
    expected.m_nMaxStipulationForBulkInsert = 9;
    expected.m_nShortRegTestSeconds = 30;
    expected.m_nPhysicalMemoryBytes = kGiB;
    EXPECT_EQ(ReadOptions(path, reporter, kGiB), expected);
}

TEST(OptionsRead, MissingFileGivesDefaultsSilently) {
    CTempFolder folder;
    CRecordingReporter reporter;
    TOptions defaults;
    defaults.m_nPhysicalMemoryBytes = kGiB;
    EXPECT_EQ(ReadOptions(folder.File("options.ini"), reporter, kGiB), defaults);
    EXPECT_TRUE(reporter.Reports().empty());
}

// An options file that is none is not read: the defaults, an error naming it; a write fails.
TEST(OptionsRead, FolderPipeDeviceOrHugeFileGivesDefaultsAndAnError) {
    for (const THostileKind kind : kHostileKinds) {
        CTempFolder folder;
        const auto file = folder.File("options.ini");
        const std::string message = MakeHostileFile(kind, file, 1 << 20);
        SCOPED_TRACE(message);
        CRecordingReporter reporter;
        TOptions defaults;
        defaults.m_nPhysicalMemoryBytes = kGiB;
        EXPECT_EQ(ReadOptions(file, reporter, kGiB), defaults);
        EXPECT_EQ(Reports(reporter), (TReports{{"Error", message}}));
        EXPECT_FALSE(CIniFile(file).WriteString("chess", "LanguageId", "1"));
    }
}

TEST(OptionsRead, QuotasUseIntegerDivision) {
    CTempFolder folder;
    CRecordingReporter reporter;
    std::filesystem::path path =
        folder.Write("options.ini", "[chess]\nMaxMemRatioForTempReg=33\nMaxMemRatioForPrecalculatedData=7\n");
    TOptions options = ReadOptions(path, reporter, 3 * kGiB + 5);
    EXPECT_EQ(options.TempRegQuotaMB(), 3072u * 33 / 100);  // 1013, not 1013.76 rounded
    EXPECT_EQ(options.FixedQuotaMB(), 614u);
    EXPECT_EQ(options.PrecalcQuotaBytes(), (3 * kGiB + 5) * 7 / 100);
}

TEST(OptionsWrite, EveryWrittenValueReadsBack) {
    constexpr const char* kChanged =
        "[chess]\nQuickMode=0\nSchedulerLevels=-1\nCustomScheduler=0\nSchedulerThreadPool=0\nObserverLevels="
        "3\n"
        "LichessLevels=-1\nWarnAboutSecondInstanceOfProgram=1\nPromptHeuristics=1\nMaxMemRatioForTempReg=55\n"
        "ClearRegisterOnStartSolving=1\nMaxMemRatioForPrecalculatedData=0\nLetAnalyzeTheSameMoveInTwoThreads="
        "0\n"
        "CommentCompatibilityMode=1\nShowMainVariant=0\nUseMainVariantAsSortIndications=1\nLogMoves=0\n"
        "RegisterInfoLog=1\nTryRelaxSpecialHeuristicsLog=1\nMinimizeToTray=0\nUseGlobalRules=0\n"
        "GlobalRegisterForceDiskAccess=0\nMultithreadingLevels=0\nEnableManualEngineControl=1\n"
        "UsePredefinedIndications=2\nAutoSaveMinutes=0\nAutoSaveMB=1024\nPrepareSolutionDescription=0\n"
        "SolutionDetailsMoves=25\n";
    CTempFolder folder;
    CRecordingReporter reporter;
    TOptions options = ReadOptions(folder.Write("read.ini", kChanged), reporter, kGiB);
    ASSERT_TRUE(WriteOptions(folder.File("written.ini"), options));
    EXPECT_EQ(folder.Read("written.ini"), kChanged);
}

TEST(OptionsWrite, KeepsHandEditedKeysAndComments) {
    CTempFolder folder;
    std::filesystem::path path =
        folder.Write("options.ini", "; my settings\n[chess]\nLanguageId=0\nQuickMode=0\n");
    ASSERT_TRUE(WriteOptions(path, TOptions{}));
    std::string content = folder.Read("options.ini");
    EXPECT_TRUE(content.starts_with("; my settings\n[chess]\nLanguageId=0\nQuickMode=1\nSchedulerLevels=5\n"))
        << content;
}

TEST(OptionsFolder, HomeVariableWinsOverExecutableFolder) {
    const char* saved = std::getenv("MOREMATE_HOME");
    std::string savedValue = saved != nullptr ? saved : "";
    setenv("MOREMATE_HOME", "/opt/moremate", 1);
    EXPECT_EQ(OptionsFilePath(), std::filesystem::path("/opt/moremate/options.ini"));
    unsetenv("MOREMATE_HOME");
    EXPECT_EQ(ProgramFolder(), std::filesystem::read_symlink("/proc/self/exe").parent_path());
    if (saved != nullptr) setenv("MOREMATE_HOME", savedValue.c_str(), 1);
}

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
    EXPECT_EQ(Reports(m_reporter), (TReports{{"Warning", kBadAutoSave}}));
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
    EXPECT_EQ(Reports(m_reporter), (TReports{{"Informacja", kCustomSchedulerOff}}));
}

TEST_F(OptionsDialogSave, WriteFailureIsReportedAfterTakingValues) {
    std::filesystem::path unwritable = m_folder.File("missing") / "options.ini";
    TOptionsDialogFields fields = OptionsDialogFields(m_options, m_nThreads);
    fields.sAutoSaveMinutes = "30";
    EXPECT_TRUE(SaveOptionsDialog(fields, m_options, m_nThreads, unwritable, m_reporter));
    EXPECT_EQ(m_options.m_nAutoSaveMinutes, 30);
    EXPECT_EQ(Reports(m_reporter), (TReports{{"Error", kErrorWritingOptions}}));
}

}  // namespace
}  // namespace moremate
