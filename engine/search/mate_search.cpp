#include "mate_search.h"

#include <cstring>

#include "child_keys_ahead.h"
#include "children_ahead.h"
#include "core/squares_after.h"
#include "dead_position.h"
#include "engine/state/run_control.h"
#include "position_repetition.h"

namespace moremate {
namespace {

constexpr int kPoorlySortedIndex = 8;  // a mating move sorted this late is worth a log line
constexpr int kRepetitionMinHalfMoves = 10;
// Far from the end of a line and near its start, mates shorter than the moves left are looked
// for first, up to the quicker-mate depth (NextDepth).
constexpr int kQuickerMateMinHalfMoves = 17;
constexpr int kQuickerMateMaxPlayed = 7;
// From three moves to mate on, White's moves that leave Black fewest replies are tried first
// within their group; nearer the end counting the replies costs more than it saves.
constexpr int kFewestRepliesMinHalfMoves = 5;
// Black nodes from this many half-moves on have their children's register entries loaded ahead:
// nearer the end the first defence mostly refutes, and a child played ahead is wasted.
constexpr int kChildrenAheadMinMovesLeft = 4;

}  // namespace

bool EnPassantPossible(const TChessboard& node) {
    if (node.epSquare == kNoSquare) return false;
    const uint8_t us = node.ToMove();
    const int pawnSquare = us == kWhite ? node.epSquare - 8 : node.epSquare + 8;  // the pawn that passed
    const int file = FileOf(pawnSquare);
    const Piece ours = MakePiece(us, kPawn);
    return (file > 0 && node.squares[pawnSquare - 1] == ours) ||
           (file < 7 && node.squares[pawnSquare + 1] == ours);
}

bool MatesInOne(const TChessboard& node, const TMoveList& checks, const CKingFlights& flights) {
    TBoardRoom child;
    for (const TMove& m : checks) {
        if (flights.CanStepAfter(node, m)) continue;  // most checks: no need to play them
        PlayMove(node, m, child.board);
        if (!HasLegalMove(child.board)) return true;
    }
    return false;
}

bool MatesInOne(const TChessboard& node, const TMoveList& checks) {
    return checks.count > 0 && MatesInOne(node, checks, CKingFlights(node));
}

bool HasMateInOne(const TChessboard& node) {
    const CKingFlights flights(node);
    TMoveList checks;  // only those that may mate
    GenerateCheckingMoves(node, checks, &flights);
    return MatesInOne(node, checks, flights);
}

bool SamePosition(const TChessboard& a, const TChessboard& b) {
    return std::memcmp(a.squares, b.squares, 64) == 0 && CastlingRights(a) == CastlingRights(b) &&
           EnPassantPossible(a) == EnPassantPossible(b);
}

bool SquaresTellAll(const TChessboard& node) {
    return SquaresTellAll(node.castling, EnPassantPossible(node), node.squares);
}

void CountSearchNode(const TSearchEnvironment& env, uint64_t& nodes) {
    constexpr uint64_t kProgressStep = 4096;
    if ((++nodes % kProgressStep) == 0 && env.progressNodes)
        env.progressNodes->fetch_add(kProgressStep, std::memory_order_relaxed);
    if (env.control) env.control->Poll();
    if (env.stop && env.stop->load(std::memory_order_relaxed)) throw TSearchStopped{};
}

void TMateSearch::CountNode() {
    CountSearchNode(m_env, m_nNodes);
    if (m_pCancel && m_pCancel->load(std::memory_order_relaxed)) throw TSearchCancelled{};
    if (m_nNodes >= m_nNodeLimit) throw TSearchCancelled{};
}

uint8_t TMateSearch::FindForcedMate(const TChessboard& node) {
    return Node(node, 0);
}

int TMateSearch::ShortestMate(const TChessboard& node, int from) {
    for (int k = from; k <= node.movesLeft; k += 2) {
        TChessboard shorter = node;
        shorter.movesLeft = static_cast<int16_t>(k);
        const uint8_t r = FindForcedMate(shorter);
        if (r == kMate) return k;
        if (r == kDoubtful) return 0;
    }
    return 0;
}

TMove TMateSearch::MatingMove(const TChessboard& node, int halfMoves) {
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    OrderWhiteMoves(node, moves, m_killers[0], halfMoves == 1, halfMoves >= kFewestRepliesMinHalfMoves);
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        child.movesLeft = static_cast<int16_t>(halfMoves - 1);
        if (Node(child, 1) == kMate) return m;
    }
    return TMove{};
}

uint8_t TMateSearch::Node(const TChessboard& node, int ply) {
    return node.WhiteToMove() ? WhiteNode(node, ply) : BlackNode(node, ply);
}

bool TMateSearch::RepeatsEarlierPosition(const TChessboard& node) const {
    return node.movesAtStart >= kRepetitionMinHalfMoves && RepeatsPositionOfLine(node);
}

// Black's defences dropped by a filter are not refuted and White's moves dropped are not
// searched: either way the node's result can only be mate or doubtful.
bool TMateSearch::Filtered(const TChessboard& node, TMoveList& moves) {
    if (!m_env.heuristics) return false;
    const uint32_t reason = m_env.heuristics->FilterMoves(node, moves);
    if (reason) m_nDoubtReason = reason;
    return reason != 0;
}

uint8_t TMateSearch::Known(uint8_t known) {
    if (known == kDoubtful) m_nDoubtReason = 0xFFFFFFFFu;
    if (known == kMate && m_env.log) m_env.log->Line("Mate found (pos.in temp.reg.)");
    return known;
}

bool TMateSearch::QuickerMateAllowed(int halfMoves, int ply) const {
    return m_env.quickerMateDepth > 0 && halfMoves >= kQuickerMateMinHalfMoves && ply < kQuickerMateMaxPlayed;
}

// A White node is asked for a mate within its half-moves, not for its quickest mate: after the mate
// in one (checks only, and the most frequent mate) it is searched with all its half-moves at once,
// as every depth in between would search each failing move again. Only near the start of a long
// line are the shorter mates, up to the quicker-mate depth, looked for first.
int TMateSearch::NextDepth(int k, int n, int ply) const {
    const int last = n % 2 ? n : n - 1;  // White moves at odd half-moves
    const int quickerLimit = 2 * m_env.quickerMateDepth - 1;
    if (k + 2 < last && k + 2 <= quickerLimit && QuickerMateAllowed(n, ply)) return k + 2;
    return k < last ? last : n + 1;
}

void TMateSearch::Log(int ply, const TChessboard& node, uint8_t result) {
    if (m_env.log) m_env.log->Result(ply, node.lastMove, result, m_nDoubtReason);
}

void TMateSearch::Settle(const TChessboard& node, int ply, uint8_t result) {
    Log(ply, node, result);
    if (m_env.store && SquaresTellAll(node)) m_env.store->Store(node, node.movesLeft, result);
}

// Asks the heuristics about the move that led to `child`, then searches on. A line that a
// heuristic stops is doubtful unless the move mates at once (White) or allows a mate at once
// (Black): such lines are always searched.
uint8_t TMateSearch::AfterMove(const TChessboard& child, int ply) {
    if (m_env.heuristics) {
        const uint32_t reason = m_env.heuristics->Check(child);
        if (reason && !MatesAtOnce(child, ply)) {
            m_nDoubtReason = reason;
            return kDoubtful;
        }
    }
    return Node(child, ply);
}

bool TMateSearch::MatesAtOnce(const TChessboard& child, int ply) {
    if (!child.WhiteToMove()) return IsMate(child);
    if (child.movesLeft < 1) return false;
    TChessboard oneMove = child;
    oneMove.movesLeft = 1;
    return WhiteNode(oneMove, ply) == kMate;
}

uint8_t TMateSearch::WhiteNode(const TChessboard& node, int ply) {
    CountNode();
    const int n = node.movesLeft;
    if (n < 1) return kNoMate;
    if (n == 1) return HasMateInOne(node) ? kMate : kNoMate;  // the most frequent node: no look-up pays off
    TMoveList moves;
    const bool stored = m_env.store && SquaresTellAll(node);
    if (stored) {
        const uint8_t known = Known(m_env.store->Lookup(node, n));
        if (known != kUnknownResult) return known;
    }
    if (m_env.useGlobalRules && WhiteCannotMate(node)) return kNoMate;
    uint8_t settled;
    if (m_env.globalRegister && m_env.globalRegister->Settle(node, settled)) return settled;
    if (RepeatsEarlierPosition(node)) {
        ++m_nRepetitions;
        return kRepetition;
    }
    GenerateLegalMoves(node, moves);
    bool doubtful = Filtered(node, moves);
    TMoveList checks;  // the mate in one is looked for among these
    OrderWhiteMoves(node, moves, m_killers[ply], false, n >= kFewestRepliesMinHalfMoves, &checks,
                    m_env.moveHistory ? &m_env.moveHistory->mates : nullptr);
    if (m_env.scheduler) m_env.scheduler->AtWhiteNode(node, moves);
    const uint64_t repetitionsBefore = m_nRepetitions;
    for (int k = 1; k <= n; k = NextDepth(k, n, ply)) {
        const uint8_t r = WhiteWithin(node, moves, checks, k, ply);
        if (r == kMate) {
            if (stored) m_env.store->Store(node, k, kMate);
            if (k < n && QuickerMateAllowed(n, ply) && m_env.log)
                m_env.log->Line("QuickerMate with AdditionalMoves found (with glob.reg./Nalimov lookup)");
            Log(ply, node, kMate);
            return kMate;
        }
        doubtful = doubtful || r == kDoubtful;
    }
    const uint8_t result = doubtful ? kDoubtful : kNoMate;
    if (result == kDoubtful || m_nRepetitions == repetitionsBefore) Settle(node, ply, result);
    return result;
}

// Without heuristics, which ask about each child's board, the register is asked about a child
// by the key its move gives before the move is played.
uint8_t TMateSearch::WhiteWithin(const TChessboard& node, TMoveList& moves, const TMoveList& checks,
                                 int halfMoves, int ply) {
    if (halfMoves == 1) return MatesInOne(node, checks) ? kMate : kNoMate;
    TChessboard within = node;
    within.movesLeft = static_cast<int16_t>(halfMoves);
    if (m_env.store && !m_env.heuristics) {
        CChildKeysAhead keys(within, moves, *m_env.store);
        return WhiteMoves(node, moves, halfMoves, ply,
                          [&](int i) { return BlackChild(within, moves.moves[i], keys.Key(i), ply + 1); });
    }
    CChildrenAhead children(within, moves, m_env.store);
    return WhiteMoves(node, moves, halfMoves, ply,
                      [&](int i) { return AfterMove(children.Child(i), ply + 1); });
}

template <class FResultOf>
uint8_t TMateSearch::WhiteMoves(const TChessboard& node, const TMoveList& moves, int halfMoves, int ply,
                                FResultOf resultOf) {
    bool doubtful = false;
    for (int i = 0; i < moves.count; ++i) {
        const TMove& m = moves.moves[i];
        m_observed.AtWhiteMove(ply, node, m);
        const uint8_t r = resultOf(i);
        if (r == kMate) {
            m_killers[ply].Remember(m);
            if (m_env.moveHistory) m_env.moveHistory->mates.Remember(m, halfMoves);
            if (i >= kPoorlySortedIndex && halfMoves >= 5 && !m_env.logFolder.empty())
                CSearchLog::PoorlySortedMove(m_env.logFolder, node, m, i);
            return kMate;
        }
        doubtful = doubtful || r == kDoubtful;
    }
    return doubtful ? kDoubtful : kNoMate;
}

uint8_t TMateSearch::OpenBlackNode(const TChessboard& node, int ply, TMoveList& moves, bool& doubtful) {
    const uint8_t settled = SettleBeforeDefences(node);
    return settled != kUnknownResult ? settled : GenerateDefences(node, ply, moves, doubtful);
}

uint8_t TMateSearch::SettleBeforeDefences(const TChessboard& node) {
    CountNode();
    const int m = node.movesLeft;
    if (m <= 0) return IsMate(node) ? kMate : kNoMate;
    if (m_env.store && SquaresTellAll(node)) {
        const uint8_t known = Known(m_env.store->Lookup(node, m));
        if (known != kUnknownResult) return known;
    }
    return SettleByRules(node);
}

uint8_t TMateSearch::SettleByRules(const TChessboard& node) {
    if (m_env.useGlobalRules && WhiteCannotMate(node)) return kNoMate;
    uint8_t settled;
    if (m_env.globalRegister && m_env.globalRegister->Settle(node, settled)) return settled;
    if (RepeatsEarlierPosition(node)) {
        ++m_nRepetitions;
        return kRepetition;
    }
    return kUnknownResult;
}

uint8_t TMateSearch::GenerateDefences(const TChessboard& node, int ply, TMoveList& moves, bool& doubtful) {
    GenerateLegalMoves(node, moves);
    if (moves.count == 0) return node.InCheck() ? kMate : kNoMate;  // mate, or stalemate
    doubtful = Filtered(node, moves);
    OrderBlackMoves(node, moves, m_killers[ply], true,
                    m_env.moveHistory ? &m_env.moveHistory->refutations : nullptr);
    return kUnknownResult;
}

// The defence that refuted a sibling last sorts first among the defences; near the end of a line
// it mostly refutes here too, so it is tried before the others are generated. Not with
// heuristics, whose filters might drop it from the list.
TMove TMateSearch::RefutationToTryFirst(const TChessboard& node, int ply) const {
    const TMove killer = m_killers[ply].moves[0];
    if (m_env.heuristics || killer.IsNull()) return TMove{};
    return IsLegalMove(node, killer) ? killer : TMove{};
}

// A defence that was not mated: it refutes the node ("no mate"; a line that repeats is no way to
// mate), or a heuristic keeps it from a refutation, which already denies the mate in this pass:
// the other defences could only turn "doubtful" into "no mate", and searching them proves mates
// that nobody needs.
uint8_t TMateSearch::Refuted(const TChessboard& node, int ply, const TMove& defence, uint8_t result,
                             uint64_t repetitionsBefore) {
    if (result == kDoubtful) {
        Settle(node, ply, kDoubtful);
        return kDoubtful;
    }
    m_killers[ply].Remember(defence);
    if (m_env.moveHistory) m_env.moveHistory->refutations.Remember(defence, node.movesLeft);
    if (m_nRepetitions == repetitionsBefore) Settle(node, ply, kNoMate);
    return kNoMate;
}

uint8_t TMateSearch::BlackNode(const TChessboard& node, int ply) {
    const uint8_t settled = SettleBeforeDefences(node);
    return settled != kUnknownResult ? settled : Defend(node, ply);
}

// BlackNode of a White node's child, counted and asked of the register by its key before its
// move is played: most such children near the end of a line are known there.
uint8_t TMateSearch::BlackChild(const TChessboard& node, const TMove& move, const TChildKey& key, int ply) {
    CountNode();
    if (key.stored) {
        const uint8_t known = Known(m_env.store->LookupSquares(key.squares, key.hash, node.movesLeft - 1));
        if (known != kUnknownResult) return known;
    }
    TBoardRoom child;
    PlayMove(node, move, child.board);
    const uint8_t settled = SettleByRules(child.board);
    return settled != kUnknownResult ? settled : Defend(child.board, ply);
}

uint8_t TMateSearch::Defend(const TChessboard& node, int ply) {
    const uint64_t repetitionsBefore = m_nRepetitions;
    const auto defends = [](uint8_t r) { return r == kNoMate || r == kRepetition || r == kDoubtful; };
    // Near the end children are played one at a time, with nothing loaded ahead for them: the
    // refutation tried first can then simply be passed over in the list.
    const bool nearEnd = node.movesLeft < kChildrenAheadMinMovesLeft;
    const TMove first = nearEnd ? RefutationToTryFirst(node, ply) : TMove{};
    if (!first.IsNull()) {
        TBoardRoom child;
        PlayMove(node, first, child.board);
        const uint8_t r = AfterMove(child.board, ply + 1);
        if (defends(r)) return Refuted(node, ply, first, r, repetitionsBefore);
    }
    TMoveList moves;
    bool doubtful = false;
    const uint8_t generated = GenerateDefences(node, ply, moves, doubtful);
    if (generated != kUnknownResult) return generated;
    CChildrenAhead children(node, moves, nearEnd ? nullptr : m_env.store);
    for (int i = 0; i < moves.count; ++i) {
        const TMove& d = moves.moves[i];
        if (d == first) continue;  // searched already
        const uint8_t r = AfterMove(children.Child(i), ply + 1);
        if (defends(r)) return Refuted(node, ply, d, r, repetitionsBefore);
    }
    const uint8_t result = doubtful ? kDoubtful : kMate;
    Settle(node, ply, result);
    return result;
}

}  // namespace moremate
