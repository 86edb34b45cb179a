// CMessageBoxReporter: the reports of the libraries as message boxes of the main window. A report
// from another thread waits until the interface thread has shown it and the user has answered.
#pragma once

#include <QObject>
#include <QWidget>
#include <atomic>

#include "settings/reporter.h"

namespace moremate::ui {

class CMessageBoxReporter : public QObject, public CReporter {
    Q_OBJECT
  public:
    explicit CMessageBoxReporter(QWidget* parent = nullptr) : QObject(parent), m_pParent(parent) {}
    ReportAnswer Report(const std::string& title, const std::string& text, ReportButtons buttons) override;
    // The window is gone: every report from now on, and those still waiting, get the default answer.
    void Close() { m_bClosed = true; }

  private:
    ReportAnswer Show(const std::string& title, const std::string& text, ReportButtons buttons);

    QWidget* m_pParent;
    std::atomic<bool> m_bClosed{false};
};

}  // namespace moremate::ui
