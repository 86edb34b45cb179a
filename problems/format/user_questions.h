// Who is asked when reading or saving a collection needs a decision or reports a warning, and in
// which language the report is titled.
#pragma once

#include <string>

#include "settings/reporter.h"

namespace moremate {

struct TUserQuestions {
    CReporter* pReporter = nullptr;  // none: no warnings, every question answered yes
    int nLanguage = kEnglish;
};

// Asks a yes/no question; true for yes, and always without a reporter.
inline bool AskYesNo(const TUserQuestions& questions, const std::string& text) {
    if (questions.pReporter == nullptr) return true;
    return questions.pReporter->Report(ReportTitle(ReportKind::Question, questions.nLanguage), text,
                                       ReportButtons::YesNo) == ReportAnswer::Yes;
}

}  // namespace moremate
