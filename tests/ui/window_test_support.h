// What the window tests share: a small collection and questions about what was reported.
#pragma once

#include <string>

#include "settings/reporter.h"

namespace moremate::ui::test {

// A #2 without an answer (key Qa7-f2) and a #5 that keeps the engine busy for a while.
inline constexpr const char* kTwoProblems =
    "UTF-8\n\n"
    "1 #2\n{\n\tDescription: a mate in two\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n\n"
    "2 #5\n{\n\tDescription: a longer one\n\tFEN: 1k2K3/8/5R2/R4r2/8/5P2/5P2/8 w - - 0 1\n}\n";

inline int Count(const CRecordingReporter& reporter, const std::string& text) {
    int count = 0;
    for (const auto& report : reporter.Reports()) count += report.sText.find(text) != std::string::npos;
    return count;
}

inline bool Reported(const CRecordingReporter& reporter, const std::string& text) {
    return Count(reporter, text) > 0;
}

}  // namespace moremate::ui::test
