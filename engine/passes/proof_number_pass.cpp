#include "proof_number_pass.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "choice_text.h"
#include "core/pooled_thread.h"
#include "engine/search/first_move_order.h"
#include "engine/search/proof_walk.h"
#include "engine/threads/timer_thread.h"

namespace moremate {
namespace {

// The first moves of the root, settled one after another: the root's own search first (it finds
// the cheapest key), then each move still open, in the solver's order, while keys are wanted.
// With several threads, the others settle first moves one by one meanwhile, from the end of the
// order (where the root's search looks last), all sharing one table; then every thread takes the
// moves still open. Which moves are keys does not depend on the threads; in single-solution mode
// the key reported is the first proven move in the solver's order.
class CRootProofs {
  public:
    CRootProofs(const TProofNumberPassRequest& request, const TSearchEnvironment& env,
                CProofNumberTable& table, const std::atomic<bool>& budgetSpent, TProofNumberPassResult& out)
        : m_request(request),
          m_out(out),
          m_moves(FirstMoveOrder(request.position, request.preferredFirstMoves)),
          m_results(m_moves.size()) {
        const size_t threads = std::clamp<size_t>(request.threads, 1, std::max<size_t>(m_moves.size(), 1));
        for (size_t t = 0; t < threads; ++t)
            m_searches.push_back(
                std::make_unique<TProofNumberSearch>(env, table, t == 0 ? &budgetSpent : &m_helpersStop));
        m_walk.emplace(*m_searches[0]);
    }

    void Run(const std::atomic<bool>& budgetSpent) {
        uint8_t rootResult = kDoubtful;
        WithHelpers([this](size_t t) { SettleFromTheEnd(t); },
                    [&] { rootResult = m_searches[0]->Prove(m_request.position); }, true);
        for (size_t i = 0; i < m_moves.size(); ++i)
            if (!m_results[i].load().Settled()) m_results[i] = m_searches[0]->Numbers(After(m_moves[i]));
        RecordSettled();
        m_helpersStop = budgetSpent.load();
        WithHelpers([this](size_t t) { SettleInOrder(t); }, [this] { SettleInOrder(0); }, false);
        RecordSettled();
        SortByOrder();
        m_out.complete = Enough() || m_out.keys.size() + m_out.disproved.size() == m_moves.size();
        m_out.result = !m_out.keys.empty() ? kMate : (rootResult == kNoMate ? kNoMate : kDoubtful);
    }

    // Raised with the pass's own budget: the helpers end with it.
    void StopHelpers() { m_helpersStop = true; }
    uint64_t WalkNodes() const { return m_walk->Nodes(); }
    TProofNumberStats Stats() const {
        TProofNumberStats sum;
        for (const auto& search : m_searches) sum += search->Stats();
        return sum;
    }

  private:
    // Threads 1.. run `helper(t)` while the calling thread runs `main`; then the helpers are
    // stopped (`stopAfterMain`, or once enough keys are found) or waited for. A helper's end of
    // budget ends it quietly; any other exception is thrown again here, the calling thread's first.
    template <class FHelper, class FMain>
    void WithHelpers(FHelper helper, FMain main, bool stopAfterMain) {
        std::mutex mutex;
        std::exception_ptr mainError, helperError;
        std::vector<CPooledThread> threads;
        threads.reserve(m_searches.size());
        for (size_t t = 1; t < m_searches.size(); ++t)
            threads.emplace_back([&, t] {
                try {
                    helper(t);
                } catch (const TProofNumberBudgetSpent&) {
                } catch (...) {
                    const std::lock_guard lock(mutex);
                    if (!helperError) helperError = std::current_exception();
                }
            });
        try {
            main();
        } catch (...) {
            mainError = std::current_exception();
        }
        if (stopAfterMain || mainError || Enough()) m_helpersStop = true;
        for (CPooledThread& t : threads) t.join();
        if (mainError) std::rethrow_exception(mainError);
        if (helperError) std::rethrow_exception(helperError);
    }

    TChessboard After(const TMove& m) const {
        TChessboard child;
        PlayMove(m_request.position, m, child);
        return child;
    }

    // Thread t settles first moves from the end of the order, each taken once.
    void SettleFromTheEnd(size_t t) {
        while (true) {
            const size_t taken = m_fromEnd.fetch_add(1);
            if (taken >= m_moves.size()) return;
            const size_t i = m_moves.size() - 1 - taken;
            if (!m_results[i].load().Settled()) m_results[i] = Settle(t, i);
        }
    }

    // Every thread takes the next first move still open while keys are wanted; the calling thread
    // records the results in order as they come.
    void SettleInOrder(size_t t) {
        while (true) {
            if (t == 0) RecordSettled();
            if (Enough()) return;
            const size_t i = m_next.fetch_add(1);
            if (i >= m_moves.size()) return;
            if (!m_results[i].load().Settled()) m_results[i] = Settle(t, i);
        }
    }

    TProofNumbers Settle(size_t t, size_t i) {
        return m_searches[t]->Prove(After(m_moves[i])) == kMate ? TProofNumbers{0, kInfinity}
                                                                : TProofNumbers{kInfinity, 0};
    }

    // On the calling thread only: the walks of the proofs are not shared.
    void RecordSettled() {
        for (size_t i = 0; i < m_moves.size() && !Enough(); ++i) Take(i, m_results[i].load());
    }

    bool Enough() const { return m_nKeys.load() >= m_request.keyLimit; }

    // Keys and disproved moves in the solver's order, whichever thread settled them first.
    void SortByOrder() {
        const auto index = [this](const TMove& m) {
            return std::find(m_moves.begin(), m_moves.end(), m) - m_moves.begin();
        };
        std::sort(m_out.keys.begin(), m_out.keys.end(),
                  [&](const TKey& a, const TKey& b) { return index(a.move) < index(b.move); });
        std::sort(m_out.disproved.begin(), m_out.disproved.end(),
                  [&](const TMove& a, const TMove& b) { return index(a) < index(b); });
    }

    // A proven move becomes a key once its proof is walked; a disproved one is no key.
    void Take(size_t i, const TProofNumbers& numbers) {
        if (m_taken[i] || !numbers.Settled()) return;
        if (numbers.Disproven()) {
            m_taken[i] = true;
            m_out.disproved.push_back(m_moves[i]);
            return;
        }
        if (!m_walk->Holds(After(m_moves[i]))) return;
        m_taken[i] = true;
        m_out.keys.push_back({m_moves[i], m_walk->Line(m_request.position, m_moves[i])});
        ++m_nKeys;
    }

    const TProofNumberPassRequest& m_request;
    TProofNumberPassResult& m_out;
    std::vector<TMove> m_moves;
    std::vector<std::atomic<TProofNumbers>> m_results;                 // what the threads settled, by move
    std::vector<char> m_taken = std::vector<char>(m_moves.size(), 0);  // recorded in `m_out`
    std::atomic<size_t> m_nKeys{0}, m_next{0}, m_fromEnd{0};
    std::atomic<bool> m_helpersStop{false};
    std::vector<std::unique_ptr<TProofNumberSearch>> m_searches;
    std::optional<CProofWalk> m_walk;
};

}  // namespace

bool ReadProofNumberMode(const std::string& text, TProofNumberMode& mode) {
    return ReadChoice(
        text,
        {{"auto", TProofNumberMode::Auto}, {"off", TProofNumberMode::Off}, {"only", TProofNumberMode::Only}},
        mode);
}

uint64_t ProofNumberTableBytes(uint64_t registerQuotaMB) {
    constexpr uint64_t kMinBytes = 16ULL << 20, kMaxBytes = 4ULL << 30;
    return std::clamp((registerQuotaMB << 20) / 4, kMinBytes, kMaxBytes);
}

std::string ProofNumberStatsText(const TProofNumberPassResult& r) {
    const TProofNumberStats& s = r.stats;
    const TProofNumberTableStats& t = r.table;
    return fmt::format(
        "Proof-number pass: {} ms, {} nodes expanded, {} evaluated ({} from the table, {} from the register, "
        "{} from precalculated data, {} mate-in-one tests), {} settled by short searches of {} nodes, {} "
        "proven, {} disproven; keys {}, first moves "
        "disproved {}, proof walks {} "
        "nodes\nProof-number table: {} of {} entries used, {} stores, {} replaced, {} collections emptying "
        "{}\n",
        r.msec, s.nodes, s.evaluated, s.tableHits, s.registerHits, s.precalcHits, s.mateInOneTests,
        s.shortSearches, s.shortSearchNodes, s.proven, s.disproven, r.keys.size(), r.disproved.size(),
        r.walkNodes, t.used, t.capacity, t.stores, t.replacements, t.collections, t.collected);
}

TProofNumberPassResult RunProofNumberPass(const TProofNumberPassRequest& request, std::atomic<bool>* stop) {
    const auto start = std::chrono::steady_clock::now();
    TProofNumberPassResult out;
    std::atomic<bool> localStop{false}, budgetSpent{false};
    std::atomic<bool>& flag = stop ? *stop : localStop;
    TSearchEnvironment env = request.environment;
    env.stop = &flag;
    env.heuristics = nullptr;  // the pass proves without heuristics
    env.scheduler = nullptr;
    CProofNumberTable table(request.tableBytes, request.threads > 1);
    CRootProofs root(request, env, table, budgetSpent, out);
    std::optional<CTimerThread> deadline;
    if (request.budgetMs > 0)
        deadline.emplace(std::chrono::milliseconds(request.budgetMs), [&budgetSpent, &root] {
            budgetSpent = true;
            root.StopHelpers();
            return false;
        });
    const std::optional<CTimerThread> limit = Deadline(std::chrono::seconds(request.timeLimitSeconds), flag);
    try {
        root.Run(budgetSpent);
    } catch (const TProofNumberBudgetSpent&) {
        out.result = out.keys.empty() ? kDoubtful : kMate;
    } catch (const TSearchStopped&) {
        out.stopped = true;
        out.result = out.keys.empty() ? kDoubtful : kMate;
    }
    deadline.reset();
    out.stats = root.Stats();
    out.table = table.Stats();
    out.walkNodes = root.WalkNodes();
    out.nodes = out.stats.nodes + out.stats.shortSearchNodes;
    out.msec = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                   .count();
    return out;
}

}  // namespace moremate
