// The scheduler: below the multithreading levels, White moves up to the scheduler levels are
// searched on one thread per line, and the scheduler lends the free main-thread slots to the
// moves sorted as almost the best, so that never more than T^L threads are active.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include "core/pooled_thread.h"
#include "multithreading_levels.h"
#include "settings/options.h"

namespace moremate {

struct TSchedulerSettings {
    int levels = 0;                    // White moves, counted from the first, up to which it works; 0 = off
    bool custom = true;                // also in particular positions outside the levels (off with levels 0)
    bool threadPool = true;            // helper threads are kept for the next node instead of ended
    bool sameMoveInTwoThreads = true;  // a move being searched by a helper may be lent to another
};

// The options' scheduler settings for a run that proves a mate of `depth` half-moves.
TSchedulerSettings SchedulerSettingsForRun(const TOptions& options, int depth);

// The White move numbers the scheduler juggles in a pass, `first` to `last`; empty when it is off.
struct TJuggledMoves {
    int first = 0;
    int last = -1;
    bool Contains(int whiteMove) const { return whiteMove >= first && whiteMove <= last; }
    bool Empty() const { return last < first; }
};

// From the move after the multithreading levels up to the scheduler levels; none while
// SH_FINDFORCEDMATE is in force (the scheduler starts once it has been relaxed) and none in the
// second phase of hybrid brute force.
TJuggledMoves JuggledMoves(const TSchedulerSettings& settings, size_t multithreadingLevels, uint32_t mask,
                           bool hybridSecondPhase);

// The active threads of a solve against its T^L slots: main threads always enter, helpers only
// on a free slot.
class CSchedulerGate {
  public:
    explicit CSchedulerGate(size_t slots) : m_nSlots(slots) {}
    void Enter() { ++m_nActive; }
    bool TryEnter();
    void Leave() { --m_nActive; }
    size_t Active() const { return m_nActive.load(); }

  private:
    const size_t m_nSlots;
    std::atomic<size_t> m_nActive{0};
};

// Lends free slots to the moves sorted second at White nodes of the juggled moves: a helper
// thread searches that move on a copy of the line while the main thread goes on with the best,
// and leaves its results in the register, where the main thread finds them. Helpers never decide
// a result, so the results do not depend on them. With a thread pool helpers wait for the next
// loan; without, each loan has a thread of its own.
class CScheduler : public CSchedulerHook {
  public:
    CScheduler(const TSearchEnvironment& env, const TLevelContext& context,
               const TSchedulerSettings& settings, TJuggledMoves juggled, CSchedulerGate& gate);
    ~CScheduler() override;  // stops the helpers and waits for them
    CScheduler(const CScheduler&) = delete;
    CScheduler& operator=(const CScheduler&) = delete;

    void AtWhiteNode(const TChessboard& node, const TMoveList& moves) override;
    uint64_t Loans() const { return m_nLoans.load(); }
    uint64_t Nodes() const { return m_nNodes.load(); }

  private:
    struct TLoan;
    void Help();
    void Run(TLoan& loan);

    TSearchEnvironment m_env;
    TLevelContext m_context;
    TSchedulerSettings m_settings;
    TJuggledMoves m_juggled;
    CSchedulerGate& m_gate;
    TLevelRun m_run;
    std::atomic<bool> m_bStop{false};
    std::atomic<uint64_t> m_nLoans{0};
    std::atomic<uint64_t> m_nNodes{0};
    std::mutex m_mutex;  // loans and helpers: taken only when a slot is free
    std::condition_variable m_cv;
    std::deque<std::unique_ptr<TLoan>> m_loans;
    std::set<std::array<uint8_t, 64>> m_lent;  // positions lent and not yet done
    std::vector<CPooledThread> m_helpers;      // ended ones are let go at the next loan
    size_t m_nIdle = 0;
};

}  // namespace moremate
