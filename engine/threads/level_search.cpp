#include "level_search.h"

#include <algorithm>
#include <utility>

#include "core/notation.h"
#include "core/thread_start.h"

namespace moremate {
namespace {

// What became of a move's group: open while searched, then its result stands (concluded) or the
// move was taken out of its analysis (interrupted), whichever came first.
constexpr uint8_t kGroupOpen = 0;
constexpr uint8_t kGroupConcluded = 1;
constexpr uint8_t kGroupInterrupted = 2;

// The run control steers the order of the round for as long as it runs.
class CRoundScope {
  public:
    CRoundScope(CRunControl* control, size_t moves, CFirstMoveSteering& steering) : m_pControl(control) {
        if (m_pControl) m_pControl->FirstMovesStarted(moves, &steering);
    }
    ~CRoundScope() {
        if (m_pControl) m_pControl->FirstMovesEnded();
    }
    CRoundScope(const CRoundScope&) = delete;
    CRoundScope& operator=(const CRoundScope&) = delete;

  private:
    CRunControl* m_pControl;
};

}  // namespace

// A first move: its Black node and, once opened, the defences as tasks of the next level.
struct CLevelSearch::TMoveGroup {
    size_t index = 0;
    TChessboard node;
    std::unique_ptr<TLevelTask[]> defences;
    size_t count = 0;
    bool filtered = false;  // a filter dropped defences: the move can be doubtful at best
    bool taken = false;     // guarded by m_mutex
    std::atomic<bool> published{false};
    std::atomic<size_t> next{0};
    std::atomic<size_t> left{0};
    std::atomic<bool> refuted{false};
    std::atomic<bool> doubtful{false};
    std::atomic<bool> repetition{false};  // a refutation rests on a repeated position
    std::atomic<bool> moot{false};        // refuted or interrupted: the defences in progress end
    std::atomic<uint8_t> fate{kGroupOpen};

    // True when the group's result stands: the move was not taken out of its analysis first.
    bool Conclude() {
        uint8_t open = kGroupOpen;
        return fate.compare_exchange_strong(open, kGroupConcluded);
    }
    bool Interrupt() {
        uint8_t open = kGroupOpen;
        if (!fate.compare_exchange_strong(open, kGroupInterrupted)) return false;
        moot = true;
        return true;
    }
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
    m_nHalfMoves = halfMoves;
    m_results.assign(m_moves.size(), kNoMate);
    m_groups.clear();
    m_retired.clear();
    m_waiting.clear();
    for (size_t i = 0; i < m_moves.size(); ++i) {
        m_groups.push_back(NewGroup(i));
        m_waiting.push_back(i);
    }
    m_nLastNeeded = m_moves.size();
    m_nConcluded = 0;
    m_limit = limit;
    m_mateIndices.clear();
    const CRoundScope round(m_searches.front().Control(), m_moves.size(), *this);
    return RunThreads();
}

std::unique_ptr<CLevelSearch::TMoveGroup> CLevelSearch::NewGroup(size_t index) const {
    auto group = std::make_unique<TMoveGroup>();
    group->index = index;
    PlayMove(m_root, m_moves[index], group->node);
    group->node.movesLeft = static_cast<int16_t>(m_nHalfMoves - 1);
    return group;
}

std::vector<uint8_t> CLevelSearch::RunThreads() {
    RunOnThreads(m_searches.size(), [this](size_t t) { Work(m_searches[t]); });
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
    TMoveGroup* group = NextGroup();
    if (!group) return false;
    Open(*group, search);
    for (size_t d = group->next++; d < group->count; d = group->next++) SearchDefence(*group, d, search);
    return true;
}

// The first waiting move that still counts, taken.
CLevelSearch::TMoveGroup* CLevelSearch::NextGroup() {
    std::lock_guard lock(m_mutex);
    DropUnneeded();
    if (m_waiting.empty()) return nullptr;
    TMoveGroup& group = *m_groups[m_waiting.front()];
    m_waiting.pop_front();
    group.taken = true;
    return &group;
}

// A defence not yet taken of the earliest move in progress that still counts.
bool CLevelSearch::TakeDefence(TMateSearch& search) {
    TMoveGroup* group = nullptr;
    size_t d = 0;
    {
        std::lock_guard lock(m_mutex);
        const size_t needed = Needed();
        for (size_t i = 0; i < needed && !group; ++i) {
            TMoveGroup& candidate = *m_groups[i];
            if (!candidate.published.load(std::memory_order_acquire) ||
                candidate.next.load() >= candidate.count)
                continue;
            d = candidate.next++;
            if (d < candidate.count) group = &candidate;
        }
    }
    if (!group) return false;
    if (m_log) m_log->Line(kNextLevelLogLine);
    SearchDefence(*group, d, search);
    return true;
}

void CLevelSearch::Open(TMoveGroup& group, TMateSearch& search) {
    TMoveList moves;
    const uint8_t settled = search.OpenBlackNode(group.node, 0, moves, group.filtered);
    if (settled != kUnknownResult) {
        if (group.Conclude()) Finish(group.index, settled);
        return;
    }
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
    if (group.moot.load()) task.m_byState = kTaskWithdrawn;
    const uint64_t repetitions = search.Repetitions();
    const auto run = [&] { return RunLevelThread(task, search, m_context, m_run); };
    CRunControl* control = search.Control();  // a skip of the first move ends its defences as doubtful
    uint8_t r = kUnknownResult;
    // Once another defence refutes the move, or the move is taken out of its analysis, this one is
    // moot.
    search.SetCancel(&group.moot);
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
        group.moot = true;
    } else if (r == kDoubtful) {
        group.doubtful = true;
    }
    if (group.left.fetch_sub(1) == 1) Close(group, search);
}

// The last defence is done: the move's result, stored as a Black node of the sequential search
// would store it, unless the move was taken out of its analysis meanwhile.
void CLevelSearch::Close(TMoveGroup& group, TMateSearch& search) {
    if (!group.Conclude()) return;
    const uint8_t result = group.refuted ? kNoMate : (group.filtered || group.doubtful) ? kDoubtful : kMate;
    if (result != kNoMate || !group.repetition) search.SettleNode(group.node, 0, result);
    Finish(group.index, result);
}

// Once `limit` mates stand among the first moves, no later move can be among the keys.
void CLevelSearch::Finish(size_t index, uint8_t result) {
    m_results[index] = result;
    ++m_nConcluded;
    if (result != kMate) return;
    std::lock_guard lock(m_mutex);
    m_mateIndices.push_back(index);
    if (m_mateIndices.size() < m_limit) return;
    std::nth_element(m_mateIndices.begin(), m_mateIndices.begin() + static_cast<long>(m_limit - 1),
                     m_mateIndices.end());
    m_nLastNeeded = std::min(m_nLastNeeded.load(), m_mateIndices[m_limit - 1] + 1);
}

void CLevelSearch::DropUnneeded() {
    std::erase_if(m_waiting, [needed = Needed()](size_t index) { return index >= needed; });
}

// Taken and neither concluded nor interrupted, by index.
std::vector<size_t> CLevelSearch::InProgress() const {
    std::vector<size_t> indices;
    for (const std::unique_ptr<TMoveGroup>& group : m_groups)
        if (group->taken && group->fate.load() == kGroupOpen) indices.push_back(group->index);
    return indices;
}

// The lowest-indexed move in progress is taken out of its analysis and waits at `position` among
// the waiting moves; a fresh group searches it from its start. Its old group stays for the
// threads still leaving it, and its result never counts.
bool CLevelSearch::Requeue(size_t position) {
    for (const size_t index : InProgress()) {
        if (!m_groups[index]->Interrupt()) continue;  // concluded meanwhile
        m_retired.push_back(std::exchange(m_groups[index], NewGroup(index)));
        m_waiting.insert(m_waiting.begin() + static_cast<long>(std::min(position, m_waiting.size())), index);
        return true;
    }
    return false;
}

bool CLevelSearch::MoveToEnd() {
    std::lock_guard lock(m_mutex);
    DropUnneeded();
    return !m_waiting.empty() && Requeue(m_waiting.size());
}

bool CLevelSearch::SwapWithNext() {
    std::lock_guard lock(m_mutex);
    DropUnneeded();
    return !m_waiting.empty() && Requeue(1);
}

std::optional<size_t> CLevelSearch::BringForward(const TMove& move) {
    std::lock_guard lock(m_mutex);
    DropUnneeded();
    const auto chosen = std::find_if(m_waiting.begin(), m_waiting.end(),
                                     [this, &move](size_t index) { return m_moves[index] == move; });
    const std::vector<size_t> inProgress = InProgress();
    if (chosen == m_waiting.end() || inProgress.empty()) return std::nullopt;
    const size_t index = *chosen;
    m_waiting.erase(chosen);
    m_waiting.push_front(index);
    return inProgress.front();
}

std::vector<TWaitingMove> CLevelSearch::Waiting() const {
    std::lock_guard lock(m_mutex);
    std::vector<TWaitingMove> waiting;
    const size_t needed = Needed();
    for (const size_t index : m_waiting)
        if (index < needed) waiting.push_back({index, m_moves[index], MoveToText(m_root, m_moves[index])});
    return waiting;
}

}  // namespace moremate
