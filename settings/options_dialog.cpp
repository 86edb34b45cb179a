#include "options_dialog.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "trim.h"

namespace moremate {
namespace {

// A typed field holds a whole number and nothing else; blanks around it are forgiven.
std::optional<int> FieldInRange(std::string_view text, int minimum, int maximum) {
    text = Trim(text);
    int value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < minimum || value > maximum) {
        return std::nullopt;
    }
    return value;
}

bool SlotsFit(int threads, int levels) {
    long long slots = 0;
    long long power = 1;
    for (int level = 0; level < levels; ++level) {
        power *= threads;
        slots += power;
        if (slots >= kAnalysisSlotLimit) return false;
    }
    return true;
}

TOptionsDialogCheck Failure(const char* message) {
    TOptionsDialogCheck check;
    check.sFailure = message;
    return check;
}

// Threads and levels are cut back into range rather than refused; only a combination with too
// many threads in all is refused.
bool CheckThreads(const TOptionsDialogFields& fields, int nCurrentThreads, TOptionsDialogCheck& check) {
    check.nThreads = std::clamp(fields.nThreads, 1, kMaxThreads);
    int levels = std::clamp(fields.nMultithreadingLevels, 1, kMaxMultithreadingLevels);
    if (levels != fields.nMultithreadingLevels) check.notes.push_back(kMultithreadingLevelsAdjusted);
    if (!SlotsFit(check.nThreads, levels)) return false;
    check.options.m_nMultithreadingLevels = levels;
    if (check.nThreads != nCurrentThreads) check.notes.push_back(kThreadsNotSaved);
    return true;
}

void AddSchedulerNotes(TOptionsDialogCheck& check) {
    const TOptions& options = check.options;
    if (options.m_nSchedulerLevels == 0 && options.m_bCustomScheduler) {
        check.notes.push_back(kCustomSchedulerOff);
    }
    if (options.m_nSchedulerLevels != 0 && options.m_bLogMoves) check.notes.push_back(kSchedulerWithFullLog);
}

}  // namespace

TOptionsDialogFields OptionsDialogFields(const TOptions& options, int nThreads) {
    return {.options = options,
            .sMaxMemRatioForPrecalculatedData = std::to_string(options.m_nMaxMemRatioForPrecalculatedData),
            .sMaxMemRatioForTempReg = std::to_string(options.m_nMaxMemRatioForTempReg),
            .sSchedulerLevels = std::to_string(options.m_nSchedulerLevels),
            .sLichessLevels = std::to_string(options.m_shLichessLevels),
            .nThreads = nThreads,
            .nMultithreadingLevels = options.m_nMultithreadingLevels,
            .sAutoSaveMinutes = std::to_string(options.m_nAutoSaveMinutes),
            .sAutoSaveMB = std::to_string(options.m_nAutoSaveMB),
            .nSolutionDetailsMoves = options.m_shSolutionDetailsMoves};
}

TOptionsDialogCheck CheckOptionsDialog(const TOptionsDialogFields& fields, int nCurrentThreads) {
    TOptionsDialogCheck check;
    check.options = fields.options;
    TOptions& options = check.options;

    std::optional<int> precalcRatio = FieldInRange(fields.sMaxMemRatioForPrecalculatedData, 0, 100);
    if (!precalcRatio) return Failure(kBadPrecalcMemRatio);
    options.m_nMaxMemRatioForPrecalculatedData = *precalcRatio;

    std::optional<int> tempRegRatio = FieldInRange(fields.sMaxMemRatioForTempReg, 0, 100);
    if (!tempRegRatio) return Failure(kBadTempRegMemRatio);
    options.m_nMaxMemRatioForTempReg = *tempRegRatio;

    std::optional<int> schedulerLevels = FieldInRange(fields.sSchedulerLevels, 0, kMaxSchedulerLevels);
    if (!schedulerLevels) return Failure(kBadSchedulerLevels);
    options.m_nSchedulerLevels = *schedulerLevels;

    std::optional<int> lichessLevels = FieldInRange(fields.sLichessLevels, -1, kMaxLichessLevels);
    if (!lichessLevels) return Failure(kBadLichessLevels);
    options.m_shLichessLevels = static_cast<int16_t>(*lichessLevels);

    if (!CheckThreads(fields, nCurrentThreads, check)) return Failure(kTooManyThreads);

    constexpr int kAnyCount = std::numeric_limits<int>::max();
    std::optional<int> autoSaveMinutes = FieldInRange(fields.sAutoSaveMinutes, 0, kAnyCount);
    std::optional<int> autoSaveMB = FieldInRange(fields.sAutoSaveMB, 0, kAnyCount);
    if (!autoSaveMinutes || !autoSaveMB) return Failure(kBadAutoSave);
    options.m_nAutoSaveMinutes = *autoSaveMinutes;
    options.m_nAutoSaveMB = *autoSaveMB;

    int detailMoves = std::clamp(fields.nSolutionDetailsMoves, 0, int{std::numeric_limits<int16_t>::max()});
    options.m_shSolutionDetailsMoves = static_cast<int16_t>(detailMoves == 0 ? 10 : detailMoves);

    AddSchedulerNotes(check);
    return check;
}

bool SaveOptionsDialog(const TOptionsDialogFields& fields, TOptions& options, int& nThreads,
                       const std::filesystem::path& iniPath, CReporter& reporter) {
    TOptionsDialogCheck check = CheckOptionsDialog(fields, nThreads);
    int languageId = options.m_nLanguageId;
    if (!check.sFailure.empty()) {
        reporter.Report(ReportTitle(ReportKind::Warning, languageId), check.sFailure);
        return false;
    }
    for (const std::string& note : check.notes) {
        reporter.Report(ReportTitle(ReportKind::Information, languageId), note);
    }
    options = check.options;
    nThreads = check.nThreads;
    if (!WriteOptions(iniPath, options)) {
        reporter.Report(ReportTitle(ReportKind::Error, languageId), kErrorWritingOptions);
    }
    return true;
}

}  // namespace moremate
