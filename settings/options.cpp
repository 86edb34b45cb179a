#include "options.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <variant>

#include "core/chess_exception.h"
#include "ini_file.h"

namespace moremate {
namespace {

constexpr std::size_t kMaxTextLength = 255;

using TMember = std::variant<bool TOptions::*, int TOptions::*, int16_t TOptions::*, uint8_t TOptions::*,
                             std::string TOptions::*>;

struct TOptionKey {
    const char* pszName;
    TMember member;
    bool bWritten;        // the options dialog offers the key and writes it back
    int nFileOffset = 0;  // the value in memory less this is the value in the file
};

// In the order the keys are read and written.
const std::array kOptionKeys = {
    TOptionKey{"LanguageId", &TOptions::m_nLanguageId, false},
    TOptionKey{"QuickMode", &TOptions::m_bQuickMode, true},
    TOptionKey{"WarningOnLichessDataRepetition", &TOptions::m_bWarningOnLichessDataRepetition, false},
    TOptionKey{"SchedulerLevels", &TOptions::m_nSchedulerLevels, true, 1},
    TOptionKey{"CheckTempRegCoherency", &TOptions::m_bCheckTempRegCoherency, false},
    TOptionKey{"CustomScheduler", &TOptions::m_bCustomScheduler, true},
    TOptionKey{"SchedulerThreadPool", &TOptions::m_bSchedulerThreadPool, true},
    TOptionKey{"ObserverLevels", &TOptions::m_shObserverLevels, true},
    TOptionKey{"LichessLevels", &TOptions::m_shLichessLevels, true},
    TOptionKey{"WarnAboutSecondInstanceOfProgram", &TOptions::m_nWarnAboutSecondInstanceOfProgram, true},
    TOptionKey{"PromptHeuristics", &TOptions::m_bPromptHeuristics, true},
    TOptionKey{"MaxMemRatioForTempReg", &TOptions::m_nMaxMemRatioForTempReg, true},
    TOptionKey{"ClearRegisterOnStartSolving", &TOptions::m_bClearRegisterOnStartSolving, true},
    TOptionKey{"MaxMemRatioForPrecalculatedData", &TOptions::m_nMaxMemRatioForPrecalculatedData, true},
    TOptionKey{"LetAnalyzeTheSameMoveInTwoThreads", &TOptions::m_bLetAnalyzeTheSameMoveInTwoThreads, true},
    TOptionKey{"CommentCompatibilityMode", &TOptions::m_bCommentCompatibilityMode, true},
    TOptionKey{"ShowMainVariant", &TOptions::m_bShowMainVariant, true},
    TOptionKey{"UseMainVariantAsSortIndications", &TOptions::m_nUseMainVariantAsSortIndications, true},
    TOptionKey{"LogMoves", &TOptions::m_bLogMoves, true},
    TOptionKey{"RegisterInfoLog", &TOptions::m_bRegisterInfoLog, true},
    TOptionKey{"TryRelaxSpecialHeuristicsLog", &TOptions::m_bTryRelaxSpecialHeuristicsLog, true},
    TOptionKey{"MinimizeToTray", &TOptions::m_nMinimizeToTray, true},
    TOptionKey{"AskForGlobalRegisterRecompression", &TOptions::m_byAskForGlobalRegisterRecompression, false},
    TOptionKey{"UseDataPackedForRandomAccess", &TOptions::m_byUseDataPackedForRandomAccess, false},
    TOptionKey{"UseGlobalRules", &TOptions::m_bUseGlobalRules, true},
    TOptionKey{"GlobalRegisterForceDiskAccess", &TOptions::m_bGlobalRegisterForceDiskAccess, true},
    TOptionKey{"PrecalcPath", &TOptions::m_sPrecalcPath, false},
    TOptionKey{"MaxMateIndexesCache", &TOptions::m_nMaxMateIndexesCache, false},
    TOptionKey{"AskIfSaveAfterDecompressAllToMem", &TOptions::m_bAskIfSaveAfterDecompressAllToMem, false},
    TOptionKey{"MultithreadingLevels", &TOptions::m_nMultithreadingLevels, true},
    TOptionKey{"LogToFileTmpRegLoad", &TOptions::m_bLogToFileTmpRegLoad, false},
    TOptionKey{"CustomizedVersion", &TOptions::m_bCustomizedVersion, false},
    TOptionKey{"EnableManualEngineControl", &TOptions::m_bEnableManualEngineControl, true},
    TOptionKey{"ScalingWarningDismissed", &TOptions::m_bScalingWarningDismissed, false},
    TOptionKey{"UsePredefinedIndications", &TOptions::m_nUsePredefinedIndications, true},
    TOptionKey{"AutoSaveMinutes", &TOptions::m_nAutoSaveMinutes, true},
    TOptionKey{"AutoSaveMB", &TOptions::m_nAutoSaveMB, true},
    TOptionKey{"ExtendedTempRegDetails", &TOptions::m_bExtendedTempRegDetails, false},
    TOptionKey{"AddTestCrashHandlerMenuItem", &TOptions::m_bAddTestCrashHandlerMenuItem, false},
    TOptionKey{"UseSystemCrashHandler", &TOptions::m_bUseSystemCrashHandler, false},
    TOptionKey{"CustomLogging", &TOptions::m_nCustomLogging, false},
    TOptionKey{"MaxStipulationForBulkInsert", &TOptions::m_nMaxStipulationForBulkInsert, false},
    TOptionKey{"PrepareSolutionDescription", &TOptions::m_nPrepareSolutionDescription, true},
    TOptionKey{"SolutionDetailsMoves", &TOptions::m_shSolutionDetailsMoves, true},
    TOptionKey{"ShortRegTestSeconds", &TOptions::m_nShortRegTestSeconds, false},
    TOptionKey{"RunRegressionTestInLoop", &TOptions::m_bRunRegressionTestInLoop, false},
    TOptionKey{"TablebaseURL", &TOptions::m_sTablebaseURL, false},
    TOptionKey{"TablebaseTimeoutMs", &TOptions::m_nTablebaseTimeoutMs, false},
};

// Integers are stored in the member's own width, wrapping as a plain conversion does.
void ReadKey(const CIniFile& ini, const TOptionKey& key, TOptions& options) {
    std::visit(
        [&](auto member) {
            auto& value = options.*member;
            using TValue = std::remove_reference_t<decltype(value)>;
            if constexpr (std::is_same_v<TValue, std::string>) {
                value = ini.ReadString(kOptionsSection, key.pszName, value, kMaxTextLength);
            } else {
                int fileDefault = static_cast<int>(value) - key.nFileOffset;
                value = static_cast<TValue>(ini.ReadInt(kOptionsSection, key.pszName, fileDefault) +
                                            key.nFileOffset);
            }
        },
        key.member);
}

bool WriteKey(const CIniFile& ini, const TOptionKey& key, const TOptions& options) {
    return std::visit(
        [&](auto member) {
            const auto& value = options.*member;
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value)>, std::string>) {
                return ini.WriteString(kOptionsSection, key.pszName, value);
            } else {
                return ini.WriteInt(kOptionsSection, key.pszName,
                                    static_cast<long long>(value) - key.nFileOffset);
            }
        },
        key.member);
}

void SettleReadValues(TOptions& options, CReporter& reporter) {
    options.m_nMultithreadingLevels = options.m_nMultithreadingLevels != 0 ? 1 : 0;
    options.m_nUseMainVariantAsSortIndications = std::min(options.m_nUseMainVariantAsSortIndications, 2);
    std::string warning = ReportTitle(ReportKind::Warning, options.m_nLanguageId);
    if (options.m_byAskForGlobalRegisterRecompression > options.m_byUseDataPackedForRandomAccess) {
        reporter.Report(warning, kRecompressionAboveRandomAccess);
        options.m_byAskForGlobalRegisterRecompression = options.m_byUseDataPackedForRandomAccess;
    }
    if (options.m_bLogMoves) reporter.Report(warning, kFullLogOnAtStart);
    if (options.m_nCustomLogging != 0) {
        options.m_bLogMoves = true;
        reporter.Report(ReportTitle(ReportKind::Information, options.m_nLanguageId), kCustomLoggingOn);
    }
}

uint64_t PercentOf(uint64_t amount, int percent) {
    // A negative ratio typed into the file gives no memory rather than a wrapped, huge quota.
    return amount * static_cast<uint64_t>(std::max(percent, 0)) / 100;
}

constexpr uint64_t kMB = 1024 * 1024;

}  // namespace

uint64_t TOptions::TempRegQuotaMB() const {
    return PercentOf(m_nPhysicalMemoryBytes / kMB, m_nMaxMemRatioForTempReg);
}

uint64_t TOptions::FixedQuotaMB() const {
    return PercentOf(m_nPhysicalMemoryBytes / kMB, 20);
}

uint64_t TOptions::PrecalcQuotaBytes() const {
    return PercentOf(m_nPhysicalMemoryBytes, m_nMaxMemRatioForPrecalculatedData);
}

TOptions ReadOptions(const std::filesystem::path& iniPath, CReporter& reporter,
                     uint64_t physicalMemoryBytes) {
    TOptions defaults;
    defaults.m_nPhysicalMemoryBytes = physicalMemoryBytes;
    TOptions options = defaults;
    CIniFile ini(iniPath);
    try {
        for (const TOptionKey& key : kOptionKeys) ReadKey(ini, key, options);
    } catch (const ChessException& e) {  // a folder, a device, over 1 MB: the defaults, and the user told
        reporter.Report(ReportTitle(ReportKind::Error, defaults.m_nLanguageId), e.what());
        options = defaults;
    }
    SettleReadValues(options, reporter);
    return options;
}

bool WriteOptions(const std::filesystem::path& iniPath, const TOptions& options) {
    CIniFile ini(iniPath);
    bool bAllWritten = true;
    for (const TOptionKey& key : kOptionKeys) {
        if (key.bWritten && !WriteKey(ini, key, options)) bAllWritten = false;
    }
    return bAllWritten;
}

}  // namespace moremate
