#include "proof_walk.h"

#include <algorithm>
#include <climits>
#include <deque>
#include <utility>
#include <vector>

#include "core/movegen.h"
#include "line_detours.h"
#include "move_ordering.h"

namespace moremate {
namespace {

uint64_t MemoId(const TChessboard& node) {
    const TPositionKey key = PositionKey(node);
    return key.hash ^ (key.check * 0x9e3779b97f4a7c15ULL);
}

}  // namespace

// Moves into positions whose mate precalculated data knows go first, shortest first: the walk
// then follows the data's mates, not the first proof it meets, and the main line its quickest.
void CProofWalk::OrderByKnownDistance(const TChessboard& node, TMoveList& moves) {
    std::vector<std::pair<int, TMove>> ranked;
    bool any = false;
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        const int d = m_proofs.KnownMateDistance(child);
        any |= d >= 0;
        ranked.emplace_back(d < 0 ? INT_MAX : d, m);
    }
    if (!any) return;
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (int i = 0; i < moves.count; ++i) moves.moves[i] = ranked[i].second;
}

int CProofWalk::Length(const TChessboard& node) {
    const uint64_t id = MemoId(node);
    if (const auto found = m_memo.find(id); found != m_memo.end()) return found->second.length;
    ++m_nNodes;
    TStep step = KnownStep(node);
    if (step.length < 0) step = node.WhiteToMove() ? WhiteStep(node) : BlackStep(node);
    m_memo[id] = step;
    return step.length;
}

// The step the known mate of `node` gives, when it fits the half-moves left: White's move to a
// position mated one move sooner, or Black's reply whose mate is the latest (every reply's mate
// known). A mate on the board ends the line.
CProofWalk::TStep CProofWalk::KnownStep(const TChessboard& node) {
    const int distance = m_proofs.KnownMateDistance(node);
    const int halfMoves = node.WhiteToMove() ? 2 * distance - 1 : 2 * distance;
    if (distance < 0 || halfMoves > node.movesLeft) return {};
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    if (moves.count == 0) return node.InCheck() && !node.WhiteToMove() ? TStep{0, {}} : TStep{};
    const TMove chosen =
        node.WhiteToMove() ? MoveToKnownMate(node, moves, distance - 1) : LatestKnownDefence(node, moves);
    return chosen.IsNull() ? TStep{} : StepBy(node, chosen);
}

// The first move into a position whose known mate is `distance`, or none.
TMove CProofWalk::MoveToKnownMate(const TChessboard& node, const TMoveList& moves, int distance) {
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        if (m_proofs.KnownMateDistance(child) == distance) return m;
    }
    return {};
}

// Black's reply with the latest known mate (the first of equals), or none when a reply's mate is
// not known.
TMove CProofWalk::LatestKnownDefence(const TChessboard& node, const TMoveList& moves) {
    int latest = -1;
    TMove defence;
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        const int d = m_proofs.KnownMateDistance(child);
        if (d < 0) return {};
        if (d > latest) {
            latest = d;
            defence = m;
        }
    }
    return defence;
}

// `move` and the walk's length after it, or no step when the position after it holds no mate.
CProofWalk::TStep CProofWalk::StepBy(const TChessboard& node, const TMove& move) {
    TChessboard child;
    PlayMove(node, move, child);
    const int length = Length(child);
    return length >= 0 ? TStep{static_cast<int16_t>(length + 1), move} : TStep{};
}

CProofWalk::TStep CProofWalk::WhiteStep(const TChessboard& node) {
    if (node.movesLeft < 1) return {};
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    OrderWhiteMoves(node, moves, TKillerMoves{}, node.movesLeft == 1);
    OrderByKnownDistance(node, moves);
    const TStep step = ProvenMove(node, moves);
    if (step.length >= 0 || node.movesLeft == 1) return step;
    // Near the end the search settles nodes by the ordinary search, which keeps no numbers of
    // their children: it names the mating move itself.
    if (const TMove mating = m_proofs.ShortMatingMove(node); !mating.IsNull()) return StepBy(node, mating);
    // The table no longer holds a proven move here: prove the node again (the search polls the
    // run's stop and the pass's budget).
    if (m_proofs.Prove(node) != kMate) return {};
    return ProvenMove(node, moves);
}

// The first move of `moves` whose position the search holds as proven and whose proof the walk
// confirms.
CProofWalk::TStep CProofWalk::ProvenMove(const TChessboard& node, const TMoveList& moves) {
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(node, m, child);
        if (node.movesLeft == 1 ? !IsMate(child) : !m_proofs.Numbers(child).Proven()) continue;
        const int length = Length(child);
        if (length >= 0) return {static_cast<int16_t>(length + 1), m};
    }
    return {};
}

CProofWalk::TStep CProofWalk::BlackStep(const TChessboard& node) {
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    if (moves.count == 0) return node.InCheck() ? TStep{0, {}} : TStep{};
    if (node.movesLeft < 1) return {};
    TStep longest{0, {}};
    for (const TMove& d : moves) {
        TChessboard child;
        PlayMove(node, d, child);
        const int length = Length(child);
        if (length < 0) return {};
        if (length + 1 > longest.length) longest = {static_cast<int16_t>(length + 1), d};
    }
    // Black's longest defence by the known mates, when every reply's is known: the walk's own
    // lengths follow the first proof found, not the quickest.
    if (const TMove defence = LatestKnownDefence(node, moves); !defence.IsNull()) longest.move = defence;
    return longest;
}

std::vector<TMove> CProofWalk::Line(const TChessboard& root, const TMove& key) {
    std::deque<TChessboard> line(1);  // stable addresses: every position links to the one before
    PlayMove(root, key, line.back());
    std::vector<TMove> moves{key};
    while (true) {
        const TChessboard& node = line.back();
        const auto found = m_memo.find(MemoId(node));
        if (found == m_memo.end() || found->second.length <= 0 || found->second.move.IsNull()) break;
        moves.push_back(found->second.move);
        line.emplace_back();
        PlayMove(node, found->second.move, line.back());
    }
    return WithoutDetours(root, moves);
}

}  // namespace moremate
