// Who is asked when reading or saving a collection needs a decision or reports a warning, and in
// which language the report is titled.
#pragma once

#include "settings/reporter.h"

namespace moremate {

struct TUserQuestions {
    CReporter* pReporter = nullptr;  // none: no warnings, every question answered yes
    int nLanguage = kEnglish;
};

}  // namespace moremate
