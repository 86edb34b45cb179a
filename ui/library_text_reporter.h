// CLibraryTextReporter: passes every report on to another reporter with its title and text in the
// window's language (LibraryText), so that the libraries' messages reach the user translated
// whichever way they are reported.
#pragma once

#include <atomic>

#include "settings/reporter.h"

namespace moremate::ui {

class CLibraryTextReporter : public CReporter {
  public:
    CLibraryTextReporter(CReporter& target, int language) : m_target(target), m_nLanguage(language) {}
    ReportAnswer Report(const std::string& title, const std::string& text, ReportButtons buttons) override;
    void SetLanguage(int language) { m_nLanguage = language; }

  private:
    CReporter& m_target;
    std::atomic<int> m_nLanguage;  // reports come from the run's threads too
};

}  // namespace moremate::ui
