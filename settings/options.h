// The program's lasting settings: section "chess" of "options.ini" in the program folder. Read
// once at start-up; the options dialog changes the values and writes the file back key by key.
// Keys the dialog does not offer are edited in the file by hand and never written.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "machine.h"
#include "reporter.h"

namespace moremate {

inline constexpr const char* kOptionsSection = "chess";
// The most scheduler levels a run uses and the options dialog accepts.
inline constexpr int kMaxSchedulerLevels = 9;

inline constexpr const char* kRecompressionAboveRandomAccess =
    "Value of parameter AskForGlobalRegisterRecompression should not be greater than "
    "UseDataPackedForRandomAccess.";
inline constexpr const char* kFullLogOnAtStart =
    "Program has been opened with the option to write log of full analysis - this option is not recommended "
    "(it makes solving last much longer and produces large log files)";
inline constexpr const char* kCustomLoggingOn = "CustomLogging is ON (ini setting)";

struct TOptions {
    int m_nLanguageId = kEnglish;
    bool m_bQuickMode = true;
    bool m_bWarningOnLichessDataRepetition = false;
    int m_nSchedulerLevels = 6;  // 0 = off; the file holds one less
    bool m_bCheckTempRegCoherency = false;
    bool m_bCustomScheduler = true;
    bool m_bSchedulerThreadPool = true;
    int16_t m_shObserverLevels = 0;
    int16_t m_shLichessLevels = 1;  // 0 off, -1 off also for the interface's own look-ups
    int m_nWarnAboutSecondInstanceOfProgram = 2;
    bool m_bPromptHeuristics = false;
    int m_nMaxMemRatioForTempReg = 20;  // percent of physical memory
    bool m_bClearRegisterOnStartSolving = false;
    int m_nMaxMemRatioForPrecalculatedData = 20;  // percent of physical memory
    bool m_bLetAnalyzeTheSameMoveInTwoThreads = true;
    bool m_bCommentCompatibilityMode = false;
    bool m_bShowMainVariant = true;
    int m_nUseMainVariantAsSortIndications = 0;
    bool m_bLogMoves = false;
    bool m_bRegisterInfoLog = false;
    bool m_bTryRelaxSpecialHeuristicsLog = false;
    int m_nMinimizeToTray = 2;
    uint8_t m_byAskForGlobalRegisterRecompression = 0;
    uint8_t m_byUseDataPackedForRandomAccess = 2;
    bool m_bUseGlobalRules = true;
    bool m_bGlobalRegisterForceDiskAccess = true;
    std::string m_sPrecalcPath;  // empty: the default folder of precalculated data
    // The most indexes of non-zero values (".idx" files) held in memory over all loaded types.
    int m_nMaxMateIndexesCache = 20000000;
    bool m_bAskIfSaveAfterDecompressAllToMem = false;
    // Read as 0 or 1 whatever the file says; the dialog writes the count it was given, so a
    // count above 1 lasts until the program is restarted.
    int m_nMultithreadingLevels = 1;
    bool m_bLogToFileTmpRegLoad = false;
    bool m_bCustomizedVersion = false;
    bool m_bEnableManualEngineControl = false;
    bool m_bScalingWarningDismissed = false;
    int m_nUsePredefinedIndications = 0;
    int m_nAutoSaveMinutes = 240;
    int m_nAutoSaveMB = 256;
    bool m_bExtendedTempRegDetails = false;
    bool m_bAddTestCrashHandlerMenuItem = false;
    bool m_bUseSystemCrashHandler = false;
    int m_nCustomLogging = 0;
    int m_nMaxStipulationForBulkInsert = 6;
    int m_nPrepareSolutionDescription = 2;
    int16_t m_shSolutionDetailsMoves = 10;
    int m_nShortRegTestSeconds = 64;
    bool m_bRunRegressionTestInLoop = false;
    // The online tablebase's base address and the bound of its connection and of each transfer.
    std::string m_sTablebaseURL = "https://tablebase.lichess.ovh/";
    int m_nTablebaseTimeoutMs = 4000;

    // The machine's memory when the options were read; the quotas below follow from it.
    uint64_t m_nPhysicalMemoryBytes = 0;

    uint64_t TempRegQuotaMB() const;
    // A second register quota, fixed at 20 % of physical memory whatever the options say.
    uint64_t FixedQuotaMB() const;
    uint64_t PrecalcQuotaBytes() const;

    bool operator==(const TOptions&) const = default;
};

// Reads `iniPath`, then settles the values that depend on each other, telling `reporter` about
// the questionable ones. A missing file or key gives the default without a word.
TOptions ReadOptions(const std::filesystem::path& iniPath, CReporter& reporter,
                     uint64_t physicalMemoryBytes = PhysicalMemoryBytes());

// Writes the keys the options dialog offers, in the file's order, each with its own write that
// leaves the rest of the file as it is. Goes on after a failed write; false when any failed.
bool WriteOptions(const std::filesystem::path& iniPath, const TOptions& options);

}  // namespace moremate
