// The status line of `moremate solve` on stderr: the run's progress, redrawn at every tick of the
// run while stderr is a terminal, and the messages about the run printed above it. Both may come
// from other threads than the one solving.
#pragma once

#include <mutex>
#include <string>

#include "engine/run/progress_tick.h"

namespace moremate::cli {

class CProgressLine {
  public:
    CProgressLine();
    // Redraws the line: the pass status, the time and the speed, the threads' figures and the
    // observed lines.
    void Show(const TRunProgress& progress);
    // Prints `text` on a line of its own; the status line is redrawn at the next tick.
    void Say(const std::string& text);
    // Removes the status line.
    void Clear();
    bool Terminal() const { return m_bTerminal; }

  private:
    void ClearLocked();

    std::mutex m_mutex;
    bool m_bTerminal;
    bool m_bShown = false;
};

}  // namespace moremate::cli
