// Yes/no questions on the command line: answered by a flag (--yes / --no) when one is given,
// else asked on stderr and read from stdin when stdin is a terminal, else answered no, so that
// an unattended run never takes the longer way. Other reports go on to the program's reporter.
#pragma once

#include <optional>

#include "settings/reporter.h"

namespace moremate::cli {

class CQuestionPrompt : public CReporter {
  public:
    CQuestionPrompt(CReporter& reporter, std::optional<bool> answer)
        : m_reporter(reporter), m_answer(answer) {}
    ReportAnswer Report(const std::string& title, const std::string& text, ReportButtons buttons) override;

  private:
    CReporter& m_reporter;
    std::optional<bool> m_answer;
};

}  // namespace moremate::cli
