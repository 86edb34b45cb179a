// The options dialog without its window: the checks of the values typed in, the notes about
// them, and the save. The window fills TOptionsDialogFields, calls SaveOptionsDialog and stays
// open when it returns false.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "options.h"
#include "reporter.h"

namespace moremate {

inline constexpr int kMaxLichessLevels = 255;
inline constexpr int kMaxThreads = 64;
inline constexpr int kMaxMultithreadingLevels = 64;
// Threads of all levels together, t + t^2 + ... + t^L, must stay below this.
inline constexpr long long kAnalysisSlotLimit = 32767;

inline constexpr const char* kBadPrecalcMemRatio =
    "Improper value in field with memory ratio for precalculated data.";
inline constexpr const char* kBadTempRegMemRatio =
    "Improper value in field with memory ratio for temporary data.";
inline constexpr const char* kBadSchedulerLevels = "Invalid number of scheduler levels (min=0, max=9)";
inline constexpr const char* kBadLichessLevels =
    "Invalid number of online tablebase levels (min=-1, max=255)";
inline constexpr const char* kMultithreadingLevelsAdjusted =
    "Improper value in multithreading levels option: value truncated/adjusted";
inline constexpr const char* kTooManyThreads = "Too many threads and/or multithreading levels.";
// Given when the dialog changes the thread count, which lasts only until the program ends.
inline constexpr const char* kThreadsNotSaved = "Note that thread settings will not be saved";
inline constexpr const char* kBadAutoSave = "Invalid settings for auto save";
inline constexpr const char* kCustomSchedulerOff =
    "Note: Due to SchedulerLevels=0, Custom scheduler will be off";
inline constexpr const char* kSchedulerWithFullLog =
    "Note: The log of full analysis is on. Consider switching the scheduler off (SchedulerLevels=0): "
    "it breaks the linear order of the analysis, which makes the log hard to follow.";
// Names "params.ini" although the file is "options.ini": users know the message by this text.
inline constexpr const char* kErrorWritingOptions = "Error writing to params.ini";

struct TOptionsDialogFields {
    // Check boxes and lists as set in the dialog; the fields below replace the members they edit.
    TOptions options;
    std::string sMaxMemRatioForPrecalculatedData;
    std::string sMaxMemRatioForTempReg;
    std::string sSchedulerLevels;
    std::string sLichessLevels;
    int nThreads = 1;
    int nMultithreadingLevels = 1;
    std::string sAutoSaveMinutes;
    std::string sAutoSaveMB;
    int nSolutionDetailsMoves = 10;
};

// The fields as the dialog opens on `options` and the current thread count.
TOptionsDialogFields OptionsDialogFields(const TOptions& options, int nThreads);

struct TOptionsDialogCheck {
    std::string sFailure;            // the first failure; empty when the values are accepted
    std::vector<std::string> notes;  // remarks on the accepted values, in the order of the checks
    TOptions options;                // the accepted values
    int nThreads = 1;                // the accepted thread count, which the file does not keep
};

TOptionsDialogCheck CheckOptionsDialog(const TOptionsDialogFields& fields, int nCurrentThreads);

// On a failure: reports it and leaves `options` and `nThreads` as they were; returns false.
// Otherwise reports the notes, takes the values, writes the file (reporting kErrorWritingOptions
// when a key could not be written) and returns true.
bool SaveOptionsDialog(const TOptionsDialogFields& fields, TOptions& options, int& nThreads,
                       const std::filesystem::path& iniPath, CReporter& reporter);

}  // namespace moremate
