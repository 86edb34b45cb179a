// FindForcedMate: does White force mate within the half-moves left at a node?
// White nodes are OR-nodes (one mating move settles them), Black nodes AND-nodes (every
// defence must lose). A White node looks for a mate in one, then for a mate within all its
// half-moves. A line that repeats a position is treated as a failure: a mate that exists has a
// line without repetitions (a quickest one), and a result that rested on a repetition is not
// stored.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "core/chessboard.h"
#include "core/king_flights.h"
#include "move_ordering.h"
#include "observed_lines.h"
#include "position_store.h"
#include "search_hooks.h"
#include "search_log.h"

namespace moremate {

// Thrown through the search when a stop was requested; the search then has no result.
struct TSearchStopped {};
// Thrown through the search when its cancel flag was raised (its result no longer counts).
struct TSearchCancelled {};

class CRunControl;
struct TChildKey;

struct TSearchEnvironment {
    CPositionStore* store = nullptr;       // the registers of the pass, or none
    CHeuristicHook* heuristics = nullptr;  // heuristics in force, or none
    CGlobalRegisterHook* globalRegister = nullptr;
    bool useGlobalRules = true;               // positions where White can never mate are settled at once
    const std::atomic<bool>* stop = nullptr;  // polled at every node
    CRunControl* control = nullptr;           // pause and skip, polled with `stop`
    CSchedulerHook* scheduler = nullptr;      // told about White nodes, or none
    std::atomic<uint64_t>* progressNodes = nullptr;  // nodes searched, updated every few thousand
    CSearchLog* log = nullptr;                       // per-thread move log, or none
    std::string logFolder;                           // where "PoorSWM.log" goes
    int quickerMateDepth = 7;                        // "LFQMDepth" in moves: shorter mates first (0: none)
    CObservedLines* observed = nullptr;              // the main threads' lines (observer levels), or none
    // The histories that moves are ordered by (what settled nodes elsewhere in the same search),
    // shared by the threads of the search, or none: worth it in the one exhaustive search of a pass
    // without heuristics; in the many small searches of other positions, and under heuristics, what
    // worked elsewhere misleads.
    TMoveHistories* moveHistory = nullptr;
};

// What every search does at a node: counts it (adding to the run's progress every few thousand),
// waits while the run is paused, and throws TSearchStopped on a stop request.
void CountSearchNode(const TSearchEnvironment& env, uint64_t& nodes);

class TMateSearch {
  public:
    explicit TMateSearch(const TSearchEnvironment& env) : m_env(env) {}

    // The result code for `node` with `node.movesLeft` half-moves left.
    uint8_t FindForcedMate(const TChessboard& node);
    // The shortest mate from a White node within its half-moves, as a number of half-moves
    // (1, 3, 5, ...), or 0 when there is none (or it is doubtful). With `from`, known to hold no
    // mate in fewer half-moves, the mates below it are not looked for.
    int ShortestMate(const TChessboard& node, int from = 1);
    // A mating move of a White node that mates within `halfMoves`, or the null move: the first
    // that does in the order of the search's White nodes.
    TMove MatingMove(const TChessboard& node, int halfMoves);

    // A Black node whose defences several threads share: settles it at once when it can (the
    // result, or kRepetition), else kUnknownResult with the defences sorted and `doubtful` set
    // when a filter dropped some. Each defence is then searched with SearchAfterMove(child, ply
    // + 1), and the combined result stored with SettleNode.
    uint8_t OpenBlackNode(const TChessboard& node, int ply, TMoveList& moves, bool& doubtful);
    uint8_t SearchAfterMove(const TChessboard& child, int ply) { return AfterMove(child, ply); }
    void SettleNode(const TChessboard& node, int ply, uint8_t result) { Settle(node, ply, result); }
    void RememberRefutation(int ply, const TMove& move) { m_killers[ply].Remember(move); }
    void SetQuickerMateDepth(int moves) { m_env.quickerMateDepth = moves; }
    // Polled with the stop flag; null for none.
    void SetCancel(const std::atomic<bool>* cancel) { m_pCancel = cancel; }
    // The search throws TSearchCancelled once Nodes() reaches `limit`.
    void SetNodeLimit(uint64_t limit) { m_nNodeLimit = limit; }

    uint64_t Nodes() const { return m_nNodes; }
    uint64_t Repetitions() const { return m_nRepetitions; }
    CRunControl* Control() const { return m_env.control; }
    uint32_t DoubtReason() const { return m_nDoubtReason; }
    // The line this search publishes for the observer levels (nothing until attached).
    CObservedLine& Observed() { return m_observed; }

  private:
    uint8_t Node(const TChessboard& node, int ply);
    uint8_t WhiteNode(const TChessboard& node, int ply);
    // Whether one of `moves` (of which `checks` are the checking ones) mates within `halfMoves`.
    uint8_t WhiteWithin(const TChessboard& node, TMoveList& moves, const TMoveList& checks, int halfMoves,
                        int ply);
    // WhiteWithin's moves in turn, `resultOf(i)` the result of the i-th.
    template <class FResultOf>
    uint8_t WhiteMoves(const TChessboard& node, const TMoveList& moves, int halfMoves, int ply,
                       FResultOf resultOf);
    uint8_t BlackNode(const TChessboard& node, int ply);
    uint8_t BlackChild(const TChessboard& node, const TMove& move, const TChildKey& key, int ply);
    // A Black node past the look-ups: its defences searched.
    uint8_t Defend(const TChessboard& node, int ply);
    // A Black node settled before its defences are generated (register, rules, repetition), or
    // kUnknownResult.
    uint8_t SettleBeforeDefences(const TChessboard& node);
    // The same past the register: the global rules, the global register, a repetition.
    uint8_t SettleByRules(const TChessboard& node);
    uint8_t GenerateDefences(const TChessboard& node, int ply, TMoveList& moves, bool& doubtful);
    TMove RefutationToTryFirst(const TChessboard& node, int ply) const;
    uint8_t Refuted(const TChessboard& node, int ply, const TMove& defence, uint8_t result,
                    uint64_t repetitionsBefore);
    uint8_t AfterMove(const TChessboard& child, int ply);
    bool MatesAtOnce(const TChessboard& child, int ply);
    bool RepeatsEarlierPosition(const TChessboard& node) const;
    void Settle(const TChessboard& node, int ply, uint8_t result);
    void Log(int ply, const TChessboard& node, uint8_t result);
    bool QuickerMateAllowed(int halfMoves, int ply) const;
    // The depth a White node with `n` half-moves left is searched at after depth `k`; past n at the end.
    int NextDepth(int k, int n, int ply) const;
    // What a look-up of the register found, logged.
    uint8_t Known(uint8_t known);
    bool Filtered(const TChessboard& node, TMoveList& moves);
    void CountNode();

    TSearchEnvironment m_env;
    const std::atomic<bool>* m_pCancel = nullptr;
    uint64_t m_nNodes = 0;
    uint64_t m_nNodeLimit = UINT64_MAX;
    uint32_t m_nDoubtReason = 0;
    // Repetitions met so far: a "no mate" that rests on one depends on the line and is not stored.
    uint64_t m_nRepetitions = 0;
    std::vector<TKillerMoves> m_killers = std::vector<TKillerMoves>(1024);
    CObservedLine m_observed;
};

// Whether the register may hold results for this position: its 64 squares must say all, so
// positions whose castling or en passant chances differ from what the squares suggest are left out.
bool SquaresTellAll(const TChessboard& node);
// Whether one of `checks`, checking moves of `node`, mates at once; `flights` are node's.
bool MatesInOne(const TChessboard& node, const TMoveList& checks, const CKingFlights& flights);
bool MatesInOne(const TChessboard& node, const TMoveList& checks);
// Whether White, to move in `node`, mates at once: only checks are generated and tried.
bool HasMateInOne(const TChessboard& node);
// Whether the side to move can capture en passant (the square passed over is `epSquare`).
bool EnPassantPossible(const TChessboard& node);
// The same position for repetition: squares, castling rights and en passant chances.
bool SamePosition(const TChessboard& a, const TChessboard& b);

}  // namespace moremate
