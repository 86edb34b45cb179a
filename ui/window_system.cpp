// The main window's place in the system: the process priority and the processors it runs on,
// the tray icon, and the help pages opened in the browser.
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDesktopServices>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QUrl>
#include <cerrno>
#include <cstring>

#include "main_window.h"
#include "piece_glyphs.h"
#include "settings/machine.h"
#include "settings/processor_affinity.h"
#include "settings/program_folder.h"
#include "texts.h"

#ifndef MOREMATE_SOURCE_DIR
#define MOREMATE_SOURCE_DIR "."
#endif

namespace moremate::ui {
namespace {

struct THelpPage {
    const char* id;
    const char* file;  // under the program folder, else under the source tree
};

constexpr THelpPage kHelpPages[] = {
    {"help.manual", "docs/help/manual.html"},
    {"help.readme", "README.md"},
    {"help.faq", "docs/help/faq.html"},
    {"help.hints", "docs/help/hints.html"},
    {"help.modes", "docs/help/solution_modes.html"},
};

constexpr const char* kPriorityIds[] = {"prio.high", "prio.above", "prio.normal", "prio.below", "prio.low"};

}  // namespace

std::filesystem::path TMainWindow::HelpPagePath(const std::string& id) {
    for (const THelpPage& page : kHelpPages) {
        if (id != page.id) continue;
        const std::filesystem::path beside = ProgramFolder() / page.file;
        return std::filesystem::exists(beside) ? beside
                                               : std::filesystem::path(MOREMATE_SOURCE_DIR) / page.file;
    }
    return {};
}

void TMainWindow::OpenHelp(const char* id) {
    const std::filesystem::path page = HelpPagePath(id);
    if (!std::filesystem::exists(page) ||
        !QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(page.string()))))
        ReportError(Text("msg.nohelp").arg(QString::fromStdString(page.string())).toStdString());
}

void TMainWindow::BuildSystemMenus() {
    auto* priorities = new QActionGroup(this);
    for (const char* id : kPriorityIds) {
        QAction* action = m_actions.at(id);
        action->setCheckable(true);
        priorities->addAction(action);
    }
    ShowPriority();
    QMenu* processors = Menu("menu.priority")->addMenu("sub.processors");
    m_menus["sub.processors"] = processors;
    connect(processors, &QMenu::aboutToShow, this, [this, processors] { FillProcessors(processors); });
}

void TMainWindow::ShowPriority() {
    m_actions.at(kPriorityIds[static_cast<int>(CurrentPriority())])->setChecked(true);
}

void TMainWindow::SetPriority(ProcessPriority priority) {
    if (!SetProcessPriority(priority))
        ReportError(Text("msg.priorityfail").arg(std::strerror(errno)).toStdString());
    ShowPriority();
}

// One item per processor, checked when the process may run on it.
void TMainWindow::FillProcessors(QMenu* menu) {
    menu->clear();
    const std::optional<TProcessorMask> mask = ReadProcessAffinity();
    const size_t count = std::min<size_t>(LogicalProcessorCount(), kMaxProcessors);
    std::vector<bool> checks(count);
    for (size_t i = 0; i < count; ++i) checks[i] = mask && (*mask)[i];
    for (size_t i = 0; i < count; ++i) {
        QAction* item = menu->addAction(QString::fromStdString(ProcessorMenuText(i, m_nLanguage)));
        item->setCheckable(true);
        item->setChecked(checks[i]);
        connect(item, &QAction::triggered, this, [this, checks, i] {
            const std::optional<TProcessorMask> before = ReadProcessAffinity();
            if (ToggleProcessor(checks, i, m_reporter, m_nLanguage)) return;
            // A stale menu has been reported; a mask the system refuses (no processor left) not yet.
            if (before && ToggledAffinity(checks, i, *before))
                ReportError(Text("msg.affinityfail").toStdString());
        });
    }
}

void TMainWindow::BuildTray() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
    m_pTray = new QSystemTrayIcon(PieceIcon(MakePiece(kWhite, kKnight)), this);
    auto* menu = new QMenu(this);
    ContextAction(menu, "tray.show", &TMainWindow::ShowFromTray);
    ContextAction(menu, "tray.close", &TMainWindow::CloseFromTray);
    m_pTray->setContextMenu(menu);
    connect(m_pTray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) ShowFromTray();
    });
}

// MinimizeToTray: 0 never, 1 always, 2 when Ctrl is held as the window is minimised.
void TMainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || !isMinimized() || !m_pTray) return;
    const bool ctrl = QApplication::queryKeyboardModifiers() & Qt::ControlModifier;
    if (m_options.m_nMinimizeToTray == 1 || (m_options.m_nMinimizeToTray == 2 && ctrl)) {
        m_pTray->setToolTip(windowTitle());
        m_pTray->show();
        QTimer::singleShot(0, this, &QWidget::hide);
    }
}

void TMainWindow::ShowFromTray() {
    showNormal();
    activateWindow();
    if (m_pTray) m_pTray->hide();
}

void TMainWindow::CloseFromTray() {
    ShowFromTray();
    close();
}

}  // namespace moremate::ui
