#include "level_search.h"

#include <algorithm>
#include <exception>
#include <thread>

#include "core/thread_start.h"
#include "engine/state/run_control.h"

namespace moremate {

// A first move: its Black node and, once opened, the defences as tasks of the next level.
struct CLevelSearch::TMoveGroup {
    size_t index = 0;
    TChessboard node;
    std::unique_ptr<TLevelTask[]> defences;
    size_t count = 0;
    bool filtered = false;  // a filter dropped defences: the move can be doubtful at best
    std::atomic<bool> published{false};
    std::atomic<size_t> next{0};
    std::atomic<size_t> left{0};
    std::atomic<bool> refuted{false};
    std::atomic<bool> doubtful{false};
    std::atomic<bool> repetition{false};  // a refutation rests on a repeated position
};

CLevelSearch::CLevelSearch(std::vector<TMateSearch>& searches, const TChessboard& root,
                           std::vector<TMove> moves, const TLevelContext& context, CSearchLog* log,
                           CSchedulerGate& gate)
    : m_searches(searches),
      m_root(root),
      m_moves(std::move(moves)),
      m_context(context),
      m_log(log),
      m_gate(gate) {}

CLevelSearch::~CLevelSearch() = default;

std::vector<uint8_t> CLevelSearch::Search(int halfMoves, size_t limit) {
    m_results.assign(m_moves.size(), kNoMate);
    m_groups.clear();
    for (size_t i = 0; i < m_moves.size(); ++i) {
        auto group = std::make_unique<TMoveGroup>();
        group->index = i;
        PlayMove(m_root, m_moves[i], group->node);
        group->node.movesLeft = static_cast<int16_t>(halfMoves - 1);
        m_groups.push_back(std::move(group));
    }
    m_next = 0;
    m_nLastNeeded = m_moves.size();
    m_limit = limit;
    m_mateIndices.clear();
    if (CRunControl* control = m_searches.front().Control()) control->FirstMovesStarted(m_moves.size());
    std::vector<std::exception_ptr> failures(m_searches.size());
    auto work = [this, &failures](size_t t) {
        try {
            Work(m_searches[t]);
        } catch (...) {
            failures[t] = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    for (size_t t = 1; t < m_searches.size(); ++t) threads.push_back(StartThread(work, t));
    work(0);
    for (std::thread& th : threads) th.join();
    for (const std::exception_ptr& failure : failures)
        if (failure) std::rethrow_exception(failure);
    return m_results;
}

// A main thread holds its slot of the gate until no work is left, then lends it to the scheduler.
void CLevelSearch::Work(TMateSearch& search) {
    m_gate.Enter();
    try {
        while (TakeFirstMove(search) || TakeDefence(search)) {
        }
    } catch (...) {
        search.Observed().Clear();
        m_gate.Leave();
        throw;
    }
    search.Observed().Clear();
    m_gate.Leave();
}

size_t CLevelSearch::Needed() const {
    return std::min(m_moves.size(), m_nLastNeeded.load());
}

bool CLevelSearch::TakeFirstMove(TMateSearch& search) {
    const size_t i = m_next++;
    if (i >= Needed()) return false;
    Open(i, search);
    TMoveGroup& group = *m_groups[i];
    for (size_t d = group.next++; d < group.count; d = group.next++) SearchDefence(group, d, search);
    return true;
}

// A defence not yet taken of the earliest move in progress that still counts.
bool CLevelSearch::TakeDefence(TMateSearch& search) {
    const size_t needed = Needed();
    for (size_t i = 0; i < needed; ++i) {
        TMoveGroup& group = *m_groups[i];
        if (!group.published.load(std::memory_order_acquire) || group.next.load() >= group.count) continue;
        const size_t d = group.next++;
        if (d >= group.count) continue;
        if (m_log) m_log->Line(kNextLevelLogLine);
        SearchDefence(group, d, search);
        return true;
    }
    return false;
}

void CLevelSearch::Open(size_t index, TMateSearch& search) {
    TMoveGroup& group = *m_groups[index];
    TMoveList moves;
    const uint8_t settled = search.OpenBlackNode(group.node, 0, moves, group.filtered);
    if (settled != kUnknownResult) return Finish(index, settled);
    group.defences = std::make_unique<TLevelTask[]>(static_cast<size_t>(moves.count));
    for (int d = 0; d < moves.count; ++d) {
        TLevelTask& task = group.defences[static_cast<size_t>(d)];
        PlayMove(group.node, moves.moves[d], task.board);
        task.ply = 1;
        task.m_byVariant = m_context.m_byVariant;
        task.m_byPhase = m_context.m_byPhase;
        task.m_bForcedMatePass = m_context.m_bForcedMatePass;
        task.m_byState = kTaskHandedOver;
    }
    group.count = static_cast<size_t>(moves.count);
    group.left = group.count;
    group.published.store(true, std::memory_order_release);
}

void CLevelSearch::SearchDefence(TMoveGroup& group, size_t defence, TMateSearch& search) {
    TLevelTask& task = group.defences[defence];
    if (group.refuted.load()) task.m_byState = kTaskWithdrawn;
    const uint64_t repetitions = search.Repetitions();
    const auto run = [&] { return RunLevelThread(task, search, m_context, m_run); };
    CRunControl* control = search.Control();  // a skip of the first move ends its defences as doubtful
    uint8_t r = kUnknownResult;
    search.SetCancel(&group.refuted);  // once another defence refutes the move, this one is moot
    search.Observed().FirstMove(m_root, m_moves[group.index]);
    try {
        r = control ? control->AnalyseFirstMove(group.index, run) : run();
    } catch (const TSearchCancelled&) {
    } catch (...) {
        search.SetCancel(nullptr);
        throw;
    }
    search.SetCancel(nullptr);
    if (r == kNoMate || r == kRepetition) {  // a line that repeats is no way to mate
        search.RememberRefutation(0, task.board.lastMove);
        if (search.Repetitions() != repetitions) group.repetition = true;
        group.refuted = true;
    } else if (r == kDoubtful) {
        group.doubtful = true;
    }
    if (group.left.fetch_sub(1) == 1) Close(group, search);
}

// The last defence is done: the move's result, stored as a Black node of the sequential search
// would store it.
void CLevelSearch::Close(TMoveGroup& group, TMateSearch& search) {
    const uint8_t result = group.refuted ? kNoMate : (group.filtered || group.doubtful) ? kDoubtful : kMate;
    if (result != kNoMate || !group.repetition) search.SettleNode(group.node, 0, result);
    Finish(group.index, result);
}

// Once `limit` mates stand among the first moves, no later move can be among the keys.
void CLevelSearch::Finish(size_t index, uint8_t result) {
    m_results[index] = result;
    if (result != kMate) return;
    std::lock_guard lock(m_mutex);
    m_mateIndices.push_back(index);
    if (m_mateIndices.size() < m_limit) return;
    std::nth_element(m_mateIndices.begin(), m_mateIndices.begin() + static_cast<long>(m_limit - 1),
                     m_mateIndices.end());
    m_nLastNeeded = std::min(m_nLastNeeded.load(), m_mateIndices[m_limit - 1] + 1);
}

}  // namespace moremate
