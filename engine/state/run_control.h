// CRunControl: what the interface asks of a solving run while it runs, and what the run is doing
// at the moment. Stop ends the run; pause holds every search thread at its next node until resume
// or stop, and pausing one thread holds a single one; skip ends the analysis of the first White move being
// analysed, and the run goes on with the next one. The order of the first moves still to come can
// be changed while they are shared out (see CFirstMoveSteering). The search sees the control
// through TSearchEnvironment::control and polls it at every node, next to the stop flag.
//
//     CRunControl control;
//     request.environment.control = &control;
//     RunPasses(std::move(request), control.StopFlag());   // on the engine thread
//     control.Pause(); control.Resume(); control.Skip(); control.Stop();   // from any other
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"
#include "search_result.h"

namespace moremate {

// Thrown through the search of a first move that is skipped.
struct TMoveSkipped {};

// The pass under way and how far its first moves have got.
struct TPassProgress {
    int number = 0;  // 0 before the first pass starts
    std::string letter;
    uint32_t mask = 0;
    double percent = 0;  // first moves done at this mate length
};

// A first move waiting for its analysis: its index in the round, and its text in long notation.
struct TWaitingMove {
    size_t index = 0;
    TMove move;
    std::string text;
};

// The order of analysis of a round of first moves, kept by the search that shares them out. The
// current move is the lowest-indexed one in progress. A move taken out of its analysis is searched
// again from its start when its turn comes: nothing of the interrupted search counts.
class CFirstMoveSteering {
  public:
    virtual ~CFirstMoveSteering() = default;
    // The current move is taken out of its analysis and waits after every other waiting move.
    // False when no move is in progress or none waits.
    virtual bool MoveToEnd() = 0;
    // The current move is taken out of its analysis and waits right after the next waiting move,
    // which begins at once. False when no move is in progress or none waits.
    virtual bool SwapWithNext() = 0;
    // `move` (waiting) becomes the next one to begin; returns the index of the current move, or
    // nothing when no move is in progress or `move` does not wait.
    virtual std::optional<size_t> BringForward(const TMove& move) = 0;
    // The moves not yet begun, in the order they will be.
    virtual std::vector<TWaitingMove> Waiting() const = 0;
    // The moves whose results stand.
    virtual size_t Concluded() const = 0;
};

class CRunControl {
  public:
    // The run's stop flag: give it to RunPasses so that Stop() reaches the search.
    std::atomic<bool>* StopFlag() { return &m_bStop; }
    // Stops the run, also when it is paused.
    void Stop();
    // A stop asked for through Stop(), as against a time limit that raised the flag.
    bool StoppedByUser() const { return m_bUserStop.load(); }
    // A new run (the next problem) starts: the last run's time limit no longer stops it; a stop
    // asked for by the user still does.
    void RunStarting();

    // A time limit that runs out during a pause ends the run at the resume.
    void Pause();
    void Resume();
    bool Paused() const { return m_bPaused.load(); }
    // Holds the next search thread to reach a node until resume or stop, the others going on:
    // the run then uses one thread fewer. Each call holds one more thread.
    void HoldOneThread();
    // Search threads waiting for the resume.
    int HeldThreads() const;

    // Skips the first move with the lowest index among those being analysed and not yet skipped,
    // and the `count` - 1 moves that come after it in the order of analysis (those not yet begun
    // are skipped when they begin).
    // False when there is none (the run is between passes, building main lines, or not running).
    bool Skip(size_t count = 1);
    // Changes of the order of the round under way (see CFirstMoveSteering); false, or nothing
    // waiting, between rounds.
    bool MoveToEnd();
    bool SwapWithNext();
    // Skips the current move as Skip() does, `move` beginning next in its place.
    bool SkipTo(const TMove& move);
    std::vector<TWaitingMove> WaitingFirstMoves() const;

    // Called by the passes.
    void PassStarted(int number, const std::string& letter, uint32_t mask);
    TPassProgress Pass() const;

    // Called by the search at every node: waits while paused, throws TMoveSkipped when the
    // first move this thread analyses is to be skipped. Costs one relaxed load otherwise.
    void Poll() {
        if (m_nAttention.load(std::memory_order_relaxed) != 0) Attend();
    }

    // A round of the first moves starts: `count` moves, at the next mate length or in a new pass,
    // in the order `steering` (if any) keeps until FirstMovesEnded.
    void FirstMovesStarted(size_t count, CFirstMoveSteering* steering = nullptr);
    void FirstMovesEnded();
    // Runs `search` (which returns a result code) as a part of the analysis of first move `index`;
    // several threads may share the analysis of one move. A skip of the move ends every part of
    // it with kDoubtful, since the move was not searched to the end.
    template <class FSearch>
    uint8_t AnalyseFirstMove(size_t index, FSearch&& search) {
        const TFirstMove move(*this, index);
        if (move.Skipped()) return kDoubtful;
        try {
            return search();
        } catch (const TMoveSkipped&) {
            return kDoubtful;
        }
    }

  private:
    struct TSlot {
        size_t index = 0;
        bool bSkip = false;  // guarded by m_mutex
    };
    // Registers the calling thread's part of a first move for the time of its analysis.
    class TFirstMove {
      public:
        TFirstMove(CRunControl& control, size_t index);
        ~TFirstMove();
        TFirstMove(const TFirstMove&) = delete;
        TFirstMove& operator=(const TFirstMove&) = delete;
        bool Skipped() const { return m_bSkippedBefore; }

      private:
        CRunControl& m_control;
        TSlot m_slot;
        TSlot* m_pOuter;
        bool m_bSkippedBefore;  // the move was skipped before this part began: nothing registered
    };

    void Attend();
    void UpdateAttention();  // under m_mutex
    // Under m_mutex.
    std::vector<size_t> Following(size_t from, size_t count) const;
    void SkipMoves(const std::vector<size_t>& indices);

    static thread_local TSlot* s_pAnalysed;  // the calling thread's first move, if any

    std::atomic<bool> m_bStop{false};
    std::atomic<bool> m_bUserStop{false};
    std::atomic<bool> m_bPaused{false};
    std::atomic<int> m_nAttention{0};  // non-zero while paused or a skip waits to be taken
    mutable std::mutex m_mutex;
    std::condition_variable m_cvResume;
    std::vector<TSlot*> m_vAnalysed;  // first moves being analysed
    int m_nSkipsPending = 0;
    int m_nHeld = 0;
    int m_nHoldsPending = 0;  // threads to be held singly, not yet reached
    unsigned m_nResumes = 0;  // a held thread goes on when this changes
    TPassProgress m_pass;
    size_t m_nFirstMoves = 0, m_nFirstMovesBegun = 0;  // of the round under way
    std::vector<size_t> m_vSkipped;                    // first moves of the round skipped
    CFirstMoveSteering* m_pSteering = nullptr;         // the order of the round under way
};

}  // namespace moremate
