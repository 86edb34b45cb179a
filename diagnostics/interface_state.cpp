#include "interface_state.h"

namespace moremate::diagnostics {

namespace {
std::atomic<const TInterfaceState*> g_pInterfaceState{nullptr};
}

void RegisterInterfaceState(const TInterfaceState* state) {
    g_pInterfaceState = state;
}

const TInterfaceState* RegisteredInterfaceState() {
    return g_pInterfaceState.load();
}

}  // namespace moremate::diagnostics
