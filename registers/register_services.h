// What a register needs from its surroundings: a sink for its diagnostic log lines, a reporter
// for the incoherent entries found when checking, and the interface language of its messages.
#pragma once

#include <functional>
#include <string>

#include "settings/reporter.h"

namespace moremate {

// Receives one log line per call, possibly from several threads at once.
using CRegisterLog = std::function<void(const std::string& line)>;

struct TRegisterServices {
    CRegisterLog log;                // empty: lines are dropped
    CReporter* pReporter = nullptr;  // null: incoherent entries are not shown
    int languageId = kEnglish;
    bool bCheckCoherency = false;  // the CheckTempRegCoherency option

    void Log(const std::string& line) const {
        if (log) log(line);
    }
};

}  // namespace moremate
