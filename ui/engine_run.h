// CEngineRun: one solving run of the window's current problem on an engine thread of its own.
// The run's progress ticks and its report reach the interface thread as queued signals; only
// the slots there touch widgets. Stop, pause, resume and skip go to the run's control from the
// interface thread.
#pragma once

#include <QObject>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "engine/run/progress_tick.h"
#include "engine/state/run_control.h"
#include "problems/solving/problem_solving.h"

Q_DECLARE_METATYPE(moremate::TRunProgress)
Q_DECLARE_METATYPE(moremate::TProblemReport)

namespace moremate::ui {

class CEngineRun : public QObject {
    Q_OBJECT
  public:
    explicit CEngineRun(QObject* parent = nullptr);
    // Stops a run still going and waits for its thread.
    ~CEngineRun() override;

    bool Running() const { return m_thread.joinable(); }
    // Solves `entry` with `runRegister` (prepared for it, and kept alive until Finished) on the
    // engine thread. The settings' control and progress are the run's own.
    void Start(const ProblemEntry& entry, TSolveSettings settings, const TOptions& options,
               CRunRegister& runRegister);
    using FWork = std::function<TProblemReport(CRunControl& control)>;
    // Runs `work` on the engine thread with the run's control; a ChessException it throws ends
    // the run with the result "error".
    void StartWork(FWork work);
    void Stop();
    void Pause();
    void Resume();
    void HoldOneThread();
    bool Paused() const;
    // Skips the first move being analysed and the `count` - 1 after it; false when no first move
    // is being analysed.
    bool Skip(size_t count = 1);
    // The order of the first moves (see CRunControl); false, or nothing waiting, when the run
    // shares out no first moves at the moment.
    bool MoveToEnd();
    bool SwapWithNext();
    bool SkipTo(const TMove& move);
    std::vector<TWaitingMove> WaitingFirstMoves() const;
    // A line for the progress area, from the engine thread (a test's report lines).
    void Say(const std::string& line) { Q_EMIT Said(QString::fromStdString(line)); }

  Q_SIGNALS:
    void Progressed(moremate::TRunProgress progress);
    void Said(QString line);
    // The run ended; its thread is joined by the time the slots run.
    void Finished(moremate::TProblemReport report);

    // The engine thread's last word, queued to Join on the interface thread.
    void Ended(moremate::TProblemReport report);

  private Q_SLOTS:
    void Join(moremate::TProblemReport report);

  private:
    std::unique_ptr<CRunControl> m_pControl;
    std::atomic<bool> m_bEnded{true};  // the engine thread has said its last word
    std::thread m_thread;
};

}  // namespace moremate::ui
