#include "solver.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <thread>

#include "black_defence.h"
#include "move_ordering.h"

namespace moremate {
namespace {

// Raises the stop flag when the time limit runs out, unless the solve ends first.
class CDeadline {
  public:
    CDeadline(int seconds, std::atomic<bool>& flag) {
        if (seconds <= 0) return;
        m_thread = std::thread([this, seconds, &flag] {
            std::unique_lock lock(m_mutex);
            if (!m_cv.wait_for(lock, std::chrono::seconds(seconds), [this] { return m_bDone; })) flag = true;
        });
    }
    ~CDeadline() {
        {
            std::lock_guard lock(m_mutex);
            m_bDone = true;
        }
        m_cv.notify_all();
        if (m_thread.joinable()) m_thread.join();
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_cv;
    bool m_bDone = false;
    std::thread m_thread;
};

TChessboard After(const TChessboard& node, const TMove& m, int halfMoves) {
    TChessboard child;
    PlayMove(node, m, child);
    child.movesLeft = static_cast<int16_t>(halfMoves);
    return child;
}

size_t KeyLimit(const TSolveRequest& request) {
    if (request.maxKeys > 0) return static_cast<size_t>(request.maxKeys);
    return request.allSolutions ? SIZE_MAX : 1;
}

bool Contains(const std::vector<TMove>& moves, const TMove& m) {
    return std::find(moves.begin(), moves.end(), m) != moves.end();
}

bool Contains(const std::vector<TKey>& keys, const TMove& m) {
    return std::any_of(keys.begin(), keys.end(), [&m](const TKey& key) { return key.move == m; });
}

// The first moves at one mate length, spread over the threads' searches (which share the
// register). A thread takes the next move in order; with a key limit, moves after the last one
// that can still count are skipped. Results are per move, so they do not depend on the threads.
class CFirstMoves {
  public:
    CFirstMoves(std::vector<TMateSearch>& searches, const TChessboard& root, std::vector<TMove> moves)
        : m_searches(searches), m_root(root), m_moves(std::move(moves)) {}

    std::vector<uint8_t> Search(int halfMoves, size_t limit) {
        m_results.assign(m_moves.size(), kNoMate);
        m_next = 0;
        m_nLastNeeded = m_moves.size();
        m_limit = limit;
        std::vector<std::exception_ptr> failures(m_searches.size());
        std::vector<std::thread> threads;
        for (size_t t = 1; t < m_searches.size(); ++t)
            threads.emplace_back([&, t] { Work(m_searches[t], halfMoves, failures[t]); });
        Work(m_searches[0], halfMoves, failures[0]);
        for (std::thread& th : threads) th.join();
        for (const std::exception_ptr& failure : failures)
            if (failure) std::rethrow_exception(failure);
        return m_results;
    }
    const std::vector<TMove>& Moves() const { return m_moves; }

  private:
    void Work(TMateSearch& search, int halfMoves, std::exception_ptr& failure) {
        try {
            for (size_t i = m_next++; i < m_moves.size() && i < m_nLastNeeded.load(); i = m_next++) {
                m_results[i] = search.FindForcedMate(After(m_root, m_moves[i], halfMoves - 1));
                if (m_results[i] == kMate) NoteMate(i);
            }
        } catch (...) {
            failure = std::current_exception();
        }
    }
    // Once `limit` mates stand among the first moves, no later move can be among the keys.
    void NoteMate(size_t index) {
        std::lock_guard lock(m_mutex);
        m_mateIndices.push_back(index);
        if (m_mateIndices.size() < m_limit) return;
        std::nth_element(m_mateIndices.begin(), m_mateIndices.begin() + static_cast<long>(m_limit - 1),
                         m_mateIndices.end());
        m_nLastNeeded = std::min(m_nLastNeeded.load(), m_mateIndices[m_limit - 1] + 1);
    }

    std::vector<TMateSearch>& m_searches;
    const TChessboard& m_root;
    std::vector<TMove> m_moves;
    std::vector<uint8_t> m_results;
    std::atomic<size_t> m_next{0};
    std::atomic<size_t> m_nLastNeeded{0};
    size_t m_limit = 0;
    std::mutex m_mutex;
    std::vector<size_t> m_mateIndices;
};

std::vector<TMove> OrderedFirstMoves(const TSolveRequest& request) {
    TMoveList list;
    GenerateLegalMoves(request.position, list);
    OrderWhiteMoves(request.position, list, TKillerMoves{}, false);
    PreferMoves(list, request.preferredFirstMoves);
    std::vector<TMove> moves;
    for (const TMove& m : list)
        if (!Contains(request.knownKeys, m)) moves.push_back(m);
    return moves;
}

void FindKeys(std::vector<TMateSearch>& searches, const TSolveRequest& request, TSolveResult& out) {
    const TChessboard& root = request.position;
    const size_t limit = KeyLimit(request);
    CFirstMoves firstMoves(searches, root, OrderedFirstMoves(request));
    bool doubtful = false;
    // With a limit, shortest mates first, so that the first keys are found as fast as possible.
    for (int k = limit == SIZE_MAX ? root.movesLeft : 1; k <= root.movesLeft && out.keys.size() < limit;
         k += 2) {
        const std::vector<uint8_t> results = firstMoves.Search(k, limit - out.keys.size());
        for (size_t i = 0; i < results.size() && out.keys.size() < limit; ++i) {
            const TMove& m = firstMoves.Moves()[i];
            if (results[i] == kMate && !Contains(out.keys, m)) out.keys.push_back({m, {}});
            doubtful = doubtful || results[i] == kDoubtful;
        }
    }
    out.result = !out.keys.empty() ? kMate : (doubtful ? kDoubtful : kNoMate);
}

}  // namespace

std::vector<TMove> MainLine(TMateSearch& search, const TChessboard& root, const TMove& key) {
    std::deque<TChessboard> line;  // stable addresses: every position links to the one before
    std::vector<TMove> moves{key};
    line.push_back(After(root, key, root.movesLeft - 1));
    while (true) {
        const TChessboard& black = line.back();
        const TDefence defence = FindBlackDefence(search, black);
        if (defence.best.empty() || !defence.refutations.empty()) break;  // mated, or no proven mate
        const int mateIn = defence.mateIn;
        moves.push_back(defence.best.front());
        line.push_back(After(black, defence.best.front(), mateIn));
        const TChessboard& white = line.back();
        const TMove attack = search.MatingMove(white, mateIn);
        if (attack.IsNull()) break;
        moves.push_back(attack);
        line.push_back(After(white, attack, mateIn - 1));
    }
    return moves;
}

TSolveResult Solve(const TSolveRequest& request, std::atomic<bool>* stop) {
    const auto start = std::chrono::steady_clock::now();
    std::atomic<bool> localStop{false};
    std::atomic<bool>& flag = stop ? *stop : localStop;
    TSolveResult out;
    TSearchEnvironment env = request.environment;
    env.stop = &flag;
    std::vector<TMateSearch> searches(static_cast<size_t>(std::max(request.threads, 1)), TMateSearch(env));
    {
        CDeadline deadline(request.timeLimitSeconds, flag);
        try {
            FindKeys(searches, request, out);
            for (TKey& key : out.keys) key.mainLine = MainLine(searches[0], request.position, key.move);
        } catch (const TSearchStopped&) {
            out.stopped = true;
            out.result = out.keys.empty() ? kDoubtful : kMate;
        } catch (const std::bad_alloc&) {
            out.error = "Out of memory.";
            out.result = out.keys.empty() ? kDoubtful : kMate;
        }
    }
    for (const TMateSearch& search : searches) out.nodes += search.Nodes();
    out.msec = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                   .count();
    return out;
}

}  // namespace moremate
