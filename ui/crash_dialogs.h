// The crash handler's two dialogs in the desktop program: the message of a crash, shown by the
// program started anew for it (the crashed process cannot run the interface safely), and the
// choice of a crash to provoke, from the menu item that AddTestCrashHandlerMenuItem adds.
#pragma once

#include <QString>
#include <optional>

#include "diagnostics/test_crash.h"

class QWidget;

namespace moremate::ui {

// The message box titled "Unhandled exception"; returns the status the program ends with.
int ShowCrashMessage(const QString& message);

// One of segv, fpe, abort, throw and stack, or none when cancelled.
std::optional<diagnostics::TestCrash> AskTestCrash(QWidget* parent, const QString& title,
                                                   const QString& label);

}  // namespace moremate::ui
