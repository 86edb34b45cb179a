#include "proof_number_pass.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include <fmt/format.h>

#include "engine/search/first_move_order.h"
#include "engine/search/proof_walk.h"
#include "engine/threads/timer_thread.h"

namespace moremate {
namespace {

bool Contains(const std::vector<TKey>& keys, const TMove& m) {
    return std::any_of(keys.begin(), keys.end(), [&m](const TKey& key) { return key.move == m; });
}

// The first moves of the root, settled one after another: the root's own search first (it finds
// the cheapest key), then each move still open, in the solver's order, while keys are wanted.
class CRootProofs {
  public:
    CRootProofs(const TProofNumberPassRequest& request, TProofNumberSearch& proofs, TMateSearch& search,
                TProofNumberPassResult& out)
        : m_request(request), m_proofs(proofs), m_walk(proofs, search), m_out(out),
          m_moves(FirstMoveOrder(request.position, request.preferredFirstMoves)) {}

    void Run() {
        const TChessboard& root = m_request.position;
        const uint8_t rootResult = m_proofs.Prove(root);
        for (const TMove& m : m_moves) Take(m, m_proofs.Numbers(After(m)));
        for (const TMove& m : m_moves) {
            if (m_out.keys.size() >= m_request.keyLimit) break;
            if (Settled(m)) continue;
            Take(m, m_proofs.Prove(After(m)) == kMate ? TProofNumbers{0, kInfinity} : TProofNumbers{kInfinity, 0});
        }
        m_out.complete = m_out.keys.size() >= m_request.keyLimit ||
                         m_out.keys.size() + m_out.disproved.size() == m_moves.size();
        m_out.result = !m_out.keys.empty() ? kMate : (rootResult == kNoMate ? kNoMate : kDoubtful);
    }

    uint64_t WalkNodes() const { return m_walk.Nodes(); }

  private:
    TChessboard After(const TMove& m) const {
        TChessboard child;
        PlayMove(m_request.position, m, child);
        return child;
    }

    bool Settled(const TMove& m) const {
        return Contains(m_out.keys, m) ||
               std::find(m_out.disproved.begin(), m_out.disproved.end(), m) != m_out.disproved.end();
    }

    // A proven move becomes a key once its proof is walked; a disproved one is no key.
    void Take(const TMove& m, const TProofNumbers& numbers) {
        if (Settled(m) || !numbers.Settled()) return;
        if (numbers.Disproven()) {
            m_out.disproved.push_back(m);
            return;
        }
        if (m_out.keys.size() >= m_request.keyLimit || !m_walk.Holds(After(m))) return;
        m_out.keys.push_back({m, m_walk.Line(m_request.position, m)});
    }

    const TProofNumberPassRequest& m_request;
    TProofNumberSearch& m_proofs;
    CProofWalk m_walk;
    TProofNumberPassResult& m_out;
    std::vector<TMove> m_moves;
};

}  // namespace

bool ReadProofNumberMode(const std::string& text, TProofNumberMode& mode) {
    if (text == "auto")
        mode = TProofNumberMode::Auto;
    else if (text == "off")
        mode = TProofNumberMode::Off;
    else if (text == "only")
        mode = TProofNumberMode::Only;
    else
        return false;
    return true;
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
        "{} mate-in-one tests), {} proven, {} disproven; keys {}, first moves disproved {}, proof walks {} "
        "nodes\nProof-number table: {} of {} entries used, {} stores, {} replaced, {} collections emptying {}\n",
        r.msec, s.nodes, s.evaluated, s.tableHits, s.registerHits, s.mateInOneTests, s.proven, s.disproven,
        r.keys.size(), r.disproved.size(), r.walkNodes, t.used, t.capacity, t.stores, t.replacements,
        t.collections, t.collected);
}

TProofNumberPassResult RunProofNumberPass(const TProofNumberPassRequest& request, std::atomic<bool>* stop) {
    const auto start = std::chrono::steady_clock::now();
    TProofNumberPassResult out;
    std::atomic<bool> localStop{false}, budgetSpent{false};
    TSearchEnvironment env = request.environment;
    env.stop = stop ? stop : &localStop;
    env.heuristics = nullptr;  // the pass proves without heuristics
    env.scheduler = nullptr;
    CProofNumberTable table(request.tableBytes);
    TProofNumberSearch proofs(env, table, &budgetSpent);
    TMateSearch search(env);
    std::optional<CTimerThread> deadline;
    if (request.budgetMs > 0)
        deadline.emplace(std::chrono::milliseconds(request.budgetMs), [&budgetSpent] {
            budgetSpent = true;
            return false;
        });
    CRootProofs root(request, proofs, search, out);
    try {
        root.Run();
    } catch (const TProofNumberBudgetSpent&) {
        out.result = out.keys.empty() ? kDoubtful : kMate;
    } catch (const TSearchStopped&) {
        out.stopped = true;
        out.result = out.keys.empty() ? kDoubtful : kMate;
    }
    deadline.reset();
    out.stats = proofs.Stats();
    out.table = table.Stats();
    out.walkNodes = root.WalkNodes();
    out.nodes = out.stats.nodes + search.Nodes();
    out.msec =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    return out;
}

}  // namespace moremate
