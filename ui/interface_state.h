// The state of the desktop program's interface that a crash log prints: one object for the
// process, registered with the crash handler at its first use.
#pragma once

#include "diagnostics/interface_state.h"

namespace moremate::ui {

diagnostics::TInterfaceState& InterfaceState();

// The board being painted: g_bDrawingCurrentChessboard while it lasts, then g_bWMPaintComplete
// and g_bFirstWMPaintComplete; the pending paint it answers is done.
class CBoardPaintScope {
  public:
    CBoardPaintScope();
    ~CBoardPaintScope();
    CBoardPaintScope(const CBoardPaintScope&) = delete;
    CBoardPaintScope& operator=(const CBoardPaintScope&) = delete;
};

}  // namespace moremate::ui
