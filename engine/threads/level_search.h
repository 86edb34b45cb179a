// The first moves of the main position at one mate length, shared by the main threads: a thread
// takes the next first move, opens its Black node and searches the defences one by one. Once no
// first move is left, idle threads take the defences still unsearched of the moves in progress,
// so that the threads end together. Results are per move and do not depend on the threads, nor
// on changes of the order of analysis asked for while the moves are shared out.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "engine/state/run_control.h"
#include "multithreading_levels.h"
#include "scheduler.h"

namespace moremate {

class CLevelSearch : public CFirstMoveSteering {
  public:
    // One thread per search; the searches share the registers.
    CLevelSearch(std::vector<TMateSearch>& searches, const TChessboard& root, std::vector<TMove> moves,
                 const TLevelContext& context, CSearchLog* log, CSchedulerGate& gate);
    ~CLevelSearch() override;

    // The result of each first move with `halfMoves` (the root's count or fewer). With a key
    // limit, moves after the last one that can still count are skipped (left kNoMate). While it
    // runs, the searches' run control steers the order through this object.
    std::vector<uint8_t> Search(int halfMoves, size_t limit);
    const std::vector<TMove>& Moves() const { return m_moves; }

    bool MoveToEnd() override;
    bool SwapWithNext() override;
    std::optional<size_t> BringForward(const TMove& move) override;
    std::vector<TWaitingMove> Waiting() const override;
    size_t Concluded() const override { return m_nConcluded.load(); }

  private:
    struct TMoveGroup;
    std::vector<uint8_t> RunThreads();
    void Work(TMateSearch& search);
    bool TakeFirstMove(TMateSearch& search);
    TMoveGroup* NextGroup();
    bool TakeDefence(TMateSearch& search);
    void Open(TMoveGroup& group, TMateSearch& search);
    void SearchDefence(TMoveGroup& group, size_t defence, TMateSearch& search);
    void Close(TMoveGroup& group, TMateSearch& search);
    void Finish(size_t index, uint8_t result);
    size_t Needed() const;
    std::unique_ptr<TMoveGroup> NewGroup(size_t index) const;
    // Under m_mutex.
    void DropUnneeded();
    std::vector<size_t> InProgress() const;
    bool Requeue(size_t position);

    std::vector<TMateSearch>& m_searches;
    const TChessboard& m_root;
    std::vector<TMove> m_moves;
    TLevelContext m_context;
    CSearchLog* m_log;
    CSchedulerGate& m_gate;
    TLevelRun m_run;
    int m_nHalfMoves = 0;
    // The groups of the moves by index; m_mutex guards the entries, the order and the retired
    // groups (moves taken out of their analysis, kept for the threads still leaving them).
    std::vector<std::unique_ptr<TMoveGroup>> m_groups;
    std::vector<std::unique_ptr<TMoveGroup>> m_retired;
    std::deque<size_t> m_waiting;  // indices of the moves not yet taken, in the order of analysis
    std::vector<uint8_t> m_results;
    std::atomic<size_t> m_nLastNeeded{0};
    std::atomic<size_t> m_nConcluded{0};
    size_t m_limit = 0;
    mutable std::mutex m_mutex;
    std::vector<size_t> m_mateIndices;
};

}  // namespace moremate
