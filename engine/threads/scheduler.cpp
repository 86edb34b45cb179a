#include "scheduler.h"

#include <algorithm>
#include <iterator>

#include "engine/heuristics/heuristic_names.h"
#include "engine/state/solving_run.h"
#include "engine/state/thread_counters.h"

namespace moremate {

TSchedulerSettings SchedulerSettingsForRun(const TOptions& options, int depth) {
    TSchedulerSettings settings;
    settings.levels = SchedulerLevelsForRun(options.m_nSchedulerLevels, depth, false);
    settings.custom = options.m_bCustomScheduler && options.m_nSchedulerLevels != 0;
    settings.threadPool = options.m_bSchedulerThreadPool;
    settings.sameMoveInTwoThreads = options.m_bLetAnalyzeTheSameMoveInTwoThreads;
    return settings;
}

TJuggledMoves JuggledMoves(const TSchedulerSettings& settings, size_t multithreadingLevels, uint32_t mask,
                           bool hybridSecondPhase) {
    if (settings.levels <= 0 || hybridSecondPhase || (mask & SH_FINDFORCEDMATE) != 0) return {};
    return {static_cast<int>(multithreadingLevels) + 1, std::min(settings.levels, kMaxSchedulerLevels)};
}

bool CSchedulerGate::TryEnter() {
    size_t active = m_nActive.load();
    while (active < m_nSlots)
        if (m_nActive.compare_exchange_weak(active, active + 1)) return true;
    return false;
}

struct CScheduler::TLoan {
    std::deque<TChessboard> line;  // a copy of the line from the root to the node
    TLevelTask task;               // the lent move's position, linked to the copy
    std::array<uint8_t, 64> key{};
};

CScheduler::CScheduler(const TSearchEnvironment& env, const TLevelContext& context,
                       const TSchedulerSettings& settings, TJuggledMoves juggled, CSchedulerGate& gate)
    : m_env(env), m_context(context), m_settings(settings), m_juggled(juggled), m_gate(gate) {
    m_env.stop = &m_bStop;
    m_env.scheduler = nullptr;  // helpers do not lend further
    m_env.control = nullptr;
    m_env.log = nullptr;  // the move log keeps the main threads' order
    m_context.bAllowExceptions = 0;
}

CScheduler::~CScheduler() {
    {
        std::lock_guard lock(m_mutex);
        m_bStop = true;
        for (size_t i = 0; i < m_loans.size(); ++i) m_gate.Leave();
        m_loans.clear();
    }
    m_cv.notify_all();
    for (CPooledThread& helper : m_helpers) helper.join();
}

void CScheduler::AtWhiteNode(const TChessboard& node, const TMoveList& moves) {
    if (moves.count < 2 || node.movesLeft < 3) return;
    int played = 0;
    for (const TChessboard* p = node.previous; p && played < 2 * m_juggled.last; p = p->previous) ++played;
    if (!m_juggled.Contains(played / 2 + 1) || !m_gate.TryEnter()) return;
    auto loan = std::make_unique<TLoan>();
    for (const TChessboard* p = &node; p; p = p->previous) loan->line.push_front(*p);
    for (size_t i = 1; i < loan->line.size(); ++i) loan->line[i].previous = &loan->line[i - 1];
    TLevelTask& task = loan->task;
    PlayMove(loan->line.back(), moves.moves[1], task.board);
    task.board.movesLeft = static_cast<int16_t>(node.movesLeft - 1);
    task.ply = static_cast<int>(loan->line.size());
    task.m_byVariant = m_context.m_byVariant;
    task.m_byPhase = m_context.m_byPhase;
    task.m_bForcedMatePass = m_context.m_bForcedMatePass;
    task.m_byState = kTaskHandedOver;
    std::copy(std::begin(task.board.squares), std::end(task.board.squares), loan->key.begin());
    std::lock_guard lock(m_mutex);
    if (m_bStop || (!m_settings.sameMoveInTwoThreads && !m_lent.insert(loan->key).second)) {
        m_gate.Leave();
        return;
    }
    m_loans.push_back(std::move(loan));
    ++m_nLoans;
    if (m_nIdle >= m_loans.size()) return m_cv.notify_one();
    std::erase_if(m_helpers, [](const CPooledThread& helper) { return helper.Ended(); });
    m_helpers.emplace_back([this] { Help(); });
    ++g_nAdditionalThreadsSpawned;
}

// Takes loans while there are any; with a thread pool, then waits for the next.
void CScheduler::Help() {
    std::unique_lock lock(m_mutex);
    while (true) {
        if (m_loans.empty()) {
            if (m_bStop || !m_settings.threadPool) break;
            ++m_nIdle;
            m_cv.wait(lock, [this] { return m_bStop.load() || !m_loans.empty(); });
            --m_nIdle;
            continue;
        }
        const std::unique_ptr<TLoan> loan = std::move(m_loans.front());
        m_loans.pop_front();
        lock.unlock();
        Run(*loan);
        lock.lock();
        m_lent.erase(loan->key);
    }
}

void CScheduler::Run(TLoan& loan) {
    TMateSearch search(m_env);
    try {
        RunLevelThread(loan.task, search, m_context, m_run);
    } catch (...) {  // a loan that fails (out of memory, say) only loses what it would have added
    }
    m_nNodes += search.Nodes();
    m_gate.Leave();
}

}  // namespace moremate
