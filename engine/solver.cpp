#include "solver.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <new>
#include <thread>

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

// Black's defence that puts off mate the longest, with White's shortest mate after it.
bool LongestDefence(TMateSearch& search, const TChessboard& node, TMove& defence, int& mateIn) {
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    mateIn = -1;
    for (const TMove& d : moves) {
        const int k = search.ShortestMate(After(node, d, node.movesLeft - 1));
        if (k == 0) return false;  // not a proven mate: no main line to show
        if (k > mateIn) {
            mateIn = k;
            defence = d;
        }
    }
    return mateIn > 0;
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

void FindKeys(TMateSearch& search, const TSolveRequest& request, TSolveResult& out) {
    const TChessboard& root = request.position;
    const size_t limit = KeyLimit(request);
    TMoveList moves;
    GenerateLegalMoves(root, moves);
    OrderWhiteMoves(root, moves, TKillerMoves{}, false);
    PreferMoves(moves, request.preferredFirstMoves);
    bool doubtful = false;
    // With a limit, shortest mates first, so that the first keys are found as fast as possible.
    for (int k = limit == SIZE_MAX ? root.movesLeft : 1; k <= root.movesLeft; k += 2) {
        for (const TMove& m : moves) {
            if (Contains(request.knownKeys, m) || Contains(out.keys, m)) continue;
            const uint8_t r = search.FindForcedMate(After(root, m, k - 1));
            if (r == kMate) {
                out.keys.push_back({m, {}});
                if (out.keys.size() >= limit) break;
            }
            doubtful = doubtful || r == kDoubtful;
        }
        if (out.keys.size() >= limit) break;
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
        TMove defence;
        int mateIn = 0;
        if (!HasLegalMove(black) || !LongestDefence(search, black, defence, mateIn)) break;
        moves.push_back(defence);
        line.push_back(After(black, defence, mateIn));
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
    TMateSearch search(env);
    {
        CDeadline deadline(request.timeLimitSeconds, flag);
        try {
            FindKeys(search, request, out);
            for (TKey& key : out.keys) key.mainLine = MainLine(search, request.position, key.move);
        } catch (const TSearchStopped&) {
            out.stopped = true;
            out.result = out.keys.empty() ? kDoubtful : kMate;
        } catch (const std::bad_alloc&) {
            out.error = "Out of memory.";
            out.result = out.keys.empty() ? kDoubtful : kMate;
        }
    }
    out.nodes = search.Nodes();
    out.msec = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                   .count();
    return out;
}

}  // namespace moremate
