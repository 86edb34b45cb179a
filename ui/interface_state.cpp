#include "interface_state.h"

namespace moremate::ui {

diagnostics::TInterfaceState& InterfaceState() {
    static diagnostics::TInterfaceState* const s_pState = [] {
        static diagnostics::TInterfaceState state;
        diagnostics::RegisterInterfaceState(&state);
        return &state;
    }();
    return *s_pState;
}

CBoardPaintScope::CBoardPaintScope() {
    diagnostics::TInterfaceState& state = InterfaceState();
    state.m_bWMPaintComplete = false;
    state.m_bWMPaintPending = false;
    state.m_bDrawingCurrentChessboard = true;
}

CBoardPaintScope::~CBoardPaintScope() {
    diagnostics::TInterfaceState& state = InterfaceState();
    state.m_bDrawingCurrentChessboard = false;
    state.m_bWMPaintComplete = true;
    state.m_bFirstWMPaintComplete = true;
}

}  // namespace moremate::ui
