#include "solver.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>

#include "core/thread_start.h"
#include "engine/search/black_defence.h"
#include "engine/search/first_move_order.h"
#include "engine/search/move_ordering.h"
#include "engine/state/thread_counters.h"
#include "engine/threads/level_search.h"
#include "engine/threads/timer_thread.h"

namespace moremate {
namespace {

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

// T^L threads, no more than the first moves keep busy and no more than the request's processors.
size_t MainThreadSlots(const TSolveRequest& request, size_t firstMoves) {
    const TThreadSettings threads{static_cast<size_t>(std::max(request.threads, 1)),
                                  static_cast<size_t>(std::max(request.levels, 0))};
    const size_t slots = MainThreadsFor(threads, firstMoves);
    return request.processors > 0 ? std::min(slots, static_cast<size_t>(request.processors)) : slots;
}

std::vector<TMove> OrderedFirstMoves(const TSolveRequest& request) {
    std::vector<TMove> moves;
    for (const TMove& m : FirstMoveOrder(request.position, request.preferredFirstMoves))
        if (!Contains(request.knownKeys, m)) moves.push_back(m);
    return moves;
}

void FindKeys(CLevelSearch& firstMoves, const TSolveRequest& request, TSolveResult& out) {
    const TChessboard& root = request.position;
    const size_t limit = KeyLimit(request);
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

// The keys' main lines, shared out between `threads` threads. Each line is worked out by a search
// of its own, whose move order memory starts empty: a line does not depend on the other keys nor
// on the thread that works it out. Returns the nodes searched.
uint64_t AddMainLines(const TSearchEnvironment& env, const TChessboard& root, std::vector<TKey>& keys,
                      size_t threads) {
    std::atomic<size_t> next{0};
    std::atomic<uint64_t> nodes{0};
    RunOnThreads(std::min(threads, keys.size()), [&](size_t) {
        for (size_t i = next++; i < keys.size(); i = next++) {
            TMateSearch search(env);
            keys[i].mainLine = MainLine(search, root, keys[i].move);
            nodes += search.Nodes();
        }
    });
    return nodes;
}

}  // namespace

std::vector<TMove> MainLine(TMateSearch& search, const TChessboard& root, const TMove& key) {
    std::deque<TChessboard> line;  // stable addresses: every position links to the one before
    std::vector<TMove> moves{key};
    line.push_back(After(root, key, root.movesLeft - 1));
    while (true) {
        const TChessboard& black = line.back();
        const TLongestDefence defence = LongestDefence(search, black);
        if (defence.move.IsNull()) break;  // mated, or no proven mate
        const int mateIn = defence.mateIn;
        moves.push_back(defence.move);
        line.push_back(After(black, defence.move, mateIn));
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
    const CMainThreadCount engineThread(false);
    std::vector<TMove> firstMoves = OrderedFirstMoves(request);
    const TSearchEnvironment linesEnv = env;  // the main lines' searches remember no move history
    CSchedulerGate gate(MainThreadSlots(request, kMaxMainThreads));
    std::optional<CScheduler> scheduler;
    if (!request.juggled.Empty()) {
        scheduler.emplace(env, request.levelContext, request.scheduler, request.juggled, gate);
        env.scheduler = &*scheduler;
    }
    TMoveHistories histories;  // the main threads order their moves by what all of them found
    if (env.heuristics == nullptr) env.moveHistory = &histories;
    std::vector<TMateSearch> searches(MainThreadSlots(request, firstMoves.size()), TMateSearch(env));
    if (env.observed)
        for (size_t t = 0; t < searches.size(); ++t)
            searches[t].Observed().Attach(env.observed->Slot(t), env.observed->Moves());
    {
        const std::optional<CTimerThread> deadline =
            Deadline(std::chrono::seconds(request.timeLimitSeconds), flag);
        try {
            CLevelSearch levels(searches, request.position, std::move(firstMoves), request.levelContext,
                                env.log, gate);
            FindKeys(levels, request, out);
            out.nodes += AddMainLines(linesEnv, request.position, out.keys, searches.size());
        } catch (const TSearchStopped&) {
            out.stopped = true;
            out.result = out.keys.empty() ? kDoubtful : kMate;
        } catch (const std::bad_alloc&) {
            out.error = "Out of memory.";
            out.result = out.keys.empty() ? kDoubtful : kMate;
        } catch (const std::runtime_error& e) {  // such as a search variant without implementation
            out.error = e.what();
            out.result = kDoubtful;
        }
    }
    for (const TMateSearch& search : searches) out.nodes += search.Nodes();
    out.nodes += scheduler ? scheduler->Nodes() : 0;
    out.msec = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                   .count();
    return out;
}

}  // namespace moremate
