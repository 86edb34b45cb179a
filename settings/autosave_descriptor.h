// The small initialization file kept beside an automatically saved temporary register ("same
// name" + ".ini"): what the saved data belong to, and which process saved them, so that at the
// next start the program can tell an analysis that was closed forcibly.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace moremate {

inline constexpr const char* kAutoSaveSection = "AutoSave";
inline constexpr std::size_t kMaxDescriptionLength = 2047;

struct TAutoSaveDescriptor {
    std::string m_sDescription;  // the problem's description, at most kMaxDescriptionLength characters
    uint32_t m_nHeuristicsOnStart = 0;
    bool m_bHeuristicsOnStartSelectedByUser = false;
    std::string m_sHeuristicsOnStartString;
    int m_nMaxMemRatioForPrecalculatedData = 0;
    int m_nMaxMemRatioPerProblem = 0;
    // The process that saved the data; written from the running process, never from these members.
    int m_nProcessId = 0;
    std::string m_sProcessFileName;
};

// A missing file or key gives the member's default.
TAutoSaveDescriptor ReadAutoSaveDescriptor(const std::filesystem::path& path);

// Writes the descriptor's keys and the id and executable of the running process. False when any
// key could not be written.
bool WriteAutoSaveDescriptor(const std::filesystem::path& path, const TAutoSaveDescriptor& descriptor);

// Whether the analysis that wrote the descriptor was closed forcibly: the process it names neither
// marked its data closed (MarkAutoSaveClosed) nor runs any more as the same program.
bool EndedForcibly(const TAutoSaveDescriptor& descriptor);

// Marks the descriptor's data as left by an analysis that ended normally (its process id 0). False
// when the key could not be written.
bool MarkAutoSaveClosed(const std::filesystem::path& path);

}  // namespace moremate
