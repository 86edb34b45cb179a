// The state items of the desktop program's interface that the crash log prints. The desktop
// program registers the ones it keeps; a program without an interface registers none and the log
// prints them as 0.
#pragma once

#include <atomic>
#include <cstdint>

namespace moremate::diagnostics {

struct TInterfaceState {
    std::atomic<uint64_t> m_nAnimateSolutionMovePending{0};
    std::atomic<bool> m_bDrawingCurrentChessboard{false};
    std::atomic<bool> m_bPreparingChessboard{false};
    std::atomic<bool> m_bWMPaintComplete{false};
    std::atomic<bool> m_bWMPaintPending{false};
    std::atomic<bool> m_bFirstWMPaintComplete{false};
    std::atomic<bool> m_bShowWholeSolution{false};
    std::atomic<bool> m_bVariantAnimationPending{false};
    std::atomic<bool> m_bStopAnimateVariant{false};
};

// `state` must live until the program ends; nullptr unregisters.
void RegisterInterfaceState(const TInterfaceState* state);
const TInterfaceState* RegisteredInterfaceState();

}  // namespace moremate::diagnostics
