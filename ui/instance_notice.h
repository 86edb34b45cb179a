// CInstanceNoticeFilter: passes the reports of the tablebase service on to the window's reporter,
// except the notice that this is a second running instance (read-only answers), which goes where
// WarnAboutSecondInstanceOfProgram says: nowhere (0), a message box (1) or the status bar (2).
#pragma once

#include <functional>
#include <string>

#include "settings/reporter.h"

namespace moremate::ui {

class CInstanceNoticeFilter : public CReporter {
  public:
    using FStatus = std::function<void(const std::string&)>;
    CInstanceNoticeFilter(CReporter& next, int mode, FStatus status)
        : m_next(next), m_nMode(mode), m_status(std::move(status)) {}

    ReportAnswer Report(const std::string& title, const std::string& text, ReportButtons buttons) override;

  private:
    CReporter& m_next;
    int m_nMode;
    FStatus m_status;
};

}  // namespace moremate::ui
