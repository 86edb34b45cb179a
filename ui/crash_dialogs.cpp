#include "crash_dialogs.h"

#include <QInputDialog>
#include <QMessageBox>

#include "diagnostics/crash_handler.h"

namespace moremate::ui {

int ShowCrashMessage(const QString& message) {
    QMessageBox::critical(nullptr, "Unhandled exception", message);
    return diagnostics::kExitCrash;
}

std::optional<diagnostics::TestCrash> AskTestCrash(QWidget* parent, const QString& title,
                                                   const QString& label) {
    QStringList kinds;
    for (const char* kind : diagnostics::kTestCrashKinds) kinds << kind;
    bool ok = false;
    const QString kind = QInputDialog::getItem(parent, title, label, kinds, 0, false, &ok);
    if (!ok) return std::nullopt;
    return diagnostics::ParseTestCrash(kind.toStdString());
}

}  // namespace moremate::ui
