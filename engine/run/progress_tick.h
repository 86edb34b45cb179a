// CProgressTick: the progress of a solving run, handed to a callback once a period (a second)
// from a thread of its own, until the tick is stopped or destroyed, which the run does when its
// search returns.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "engine/threads/timer_thread.h"

namespace moremate {

class CObservedLines;
class CRunControl;
class CRunRegister;

struct TRunProgress {
    // The status line of the pass under way (without its carriage return), or
    // "Initial position type check..." before the first pass starts.
    std::string passStatus;
    uint64_t nodes = 0;
    std::chrono::milliseconds elapsed{0};
    std::string threadFigures;  // the search threads' figures, when the run has a source for them
    std::string observed;       // the lines the main threads analyse (observer levels), or empty
};

// Where the tick reads the progress; each source may be missing.
struct TProgressSources {
    const CRunControl* control = nullptr;  // the pass and its first moves
    const std::atomic<uint64_t>* nodes = nullptr;
    CRunRegister* runRegister = nullptr;         // the register figures of the pass status line
    std::function<std::string()> threadFigures;  // the text of TRunProgress::threadFigures
    const CObservedLines* observed = nullptr;
};

// The progress as it stands, `elapsed` after the start.
TRunProgress ReadProgress(const TProgressSources& sources, std::chrono::milliseconds elapsed);

class CProgressTick {
  public:
    using FOnTick = std::function<void(const TRunProgress&)>;
    explicit CProgressTick(TProgressSources sources, FOnTick onTick,
                           std::chrono::milliseconds period = std::chrono::milliseconds(1000));
    ~CProgressTick();
    CProgressTick(const CProgressTick&) = delete;
    CProgressTick& operator=(const CProgressTick&) = delete;

    // Ends the ticks; no callback runs after it returns.
    void Stop();

  private:
    TProgressSources m_sources;
    FOnTick m_onTick;
    std::chrono::steady_clock::time_point m_start;
    CTimerThread m_timer;  // last: ticks once the rest is ready
};

}  // namespace moremate
