// The first moves of the main position at one mate length, shared by the main threads: a thread
// takes the next first move, opens its Black node and searches the defences one by one. Once no
// first move is left, idle threads take the defences still unsearched of the moves in progress,
// so that the threads end together. Results are per move and do not depend on the threads.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "multithreading_levels.h"
#include "scheduler.h"

namespace moremate {

class CLevelSearch {
  public:
    // One thread per search; the searches share the registers.
    CLevelSearch(std::vector<TMateSearch>& searches, const TChessboard& root, std::vector<TMove> moves,
                 const TLevelContext& context, CSearchLog* log, CSchedulerGate& gate);
    ~CLevelSearch();

    // The result of each first move with `halfMoves` (the root's count or fewer). With a key
    // limit, moves after the last one that can still count are skipped (left kNoMate).
    std::vector<uint8_t> Search(int halfMoves, size_t limit);
    const std::vector<TMove>& Moves() const { return m_moves; }

  private:
    struct TMoveGroup;
    void Work(TMateSearch& search);
    bool TakeFirstMove(TMateSearch& search);
    bool TakeDefence(TMateSearch& search);
    void Open(size_t index, TMateSearch& search);
    void SearchDefence(TMoveGroup& group, size_t defence, TMateSearch& search);
    void Close(TMoveGroup& group, TMateSearch& search);
    void Finish(size_t index, uint8_t result);
    size_t Needed() const;

    std::vector<TMateSearch>& m_searches;
    const TChessboard& m_root;
    std::vector<TMove> m_moves;
    TLevelContext m_context;
    CSearchLog* m_log;
    CSchedulerGate& m_gate;
    TLevelRun m_run;
    std::vector<std::unique_ptr<TMoveGroup>> m_groups;
    std::vector<uint8_t> m_results;
    std::atomic<size_t> m_next{0};
    std::atomic<size_t> m_nLastNeeded{0};
    size_t m_limit = 0;
    std::mutex m_mutex;
    std::vector<size_t> m_mateIndices;
};

}  // namespace moremate
