#include "proof_number_search.h"

#include <algorithm>

#include "children_ahead.h"
#include "core/movegen.h"
#include "dead_position.h"
#include "move_ordering.h"

namespace moremate {
namespace {

constexpr TProofNumbers kProven{0, kInfinity};
constexpr TProofNumbers kDisproven{kInfinity, 0};
// Nodes this close to the end are settled by the ordinary search when they are expanded: a
// mate in two, or a Black node answered by mates in two, costs it fewer nodes than the table's
// bookkeeping, while a fresh node's numbers (Black's replies) still guide the search to it.
constexpr int kShortSearchHalfMoves = 4;

uint32_t Add(uint32_t a, uint32_t b) {
    return static_cast<uint32_t>(std::min<uint64_t>(uint64_t{a} + b, kInfinity - 1));
}

// The 1 + epsilon threshold (epsilon = 1/4): a child may run on until it costs a quarter more
// than its best sibling, not merely one more.
uint32_t Widen(uint32_t second) {
    if (second >= kInfinity - 1) return kInfinity;
    return static_cast<uint32_t>(std::min<uint64_t>(uint64_t{second} + 1 + second / 4, kInfinity - 1));
}

// thpn - pn + child (or the same of the disproof numbers), kept within the numbers' range.
uint32_t Share(uint32_t threshold, uint32_t total, uint32_t child) {
    const uint64_t share = uint64_t{threshold} - std::min(total, threshold) + child;
    return static_cast<uint32_t>(std::min<uint64_t>(share, kInfinity));
}

}  // namespace

TProofNumberStats& TProofNumberStats::operator+=(const TProofNumberStats& o) {
    nodes += o.nodes;
    evaluated += o.evaluated;
    tableHits += o.tableHits;
    registerHits += o.registerHits;
    precalcHits += o.precalcHits;
    mateInOneTests += o.mateInOneTests;
    shortSearches += o.shortSearches;
    shortSearchNodes += o.shortSearchNodes;
    proven += o.proven;
    disproven += o.disproven;
    return *this;
}

TProofNumberSearch::TProofNumberSearch(const TSearchEnvironment& env, CProofNumberTable& table,
                                       const std::atomic<bool>* budgetSpent)
    : m_env(env), m_table(table), m_pBudgetSpent(budgetSpent), m_short(env) {
    m_children.reserve(4096);
}

void TProofNumberSearch::CountNode() {
    CountSearchNode(m_env, m_stats.nodes);
    if (m_pBudgetSpent && m_pBudgetSpent->load(std::memory_order_relaxed)) throw TProofNumberBudgetSpent{};
}

uint8_t TProofNumberSearch::Prove(const TChessboard& node) {
    TProofNumbers numbers;
    Expand(node, PositionKey(node), kInfinity, kInfinity, numbers);
    return numbers.Proven() ? kMate : kNoMate;
}

TProofNumbers TProofNumberSearch::Numbers(const TChessboard& node) {
    return Evaluate(node, PositionKey(node));
}

// A fresh node: settled at once where that is cheap (mate in one, no replies, a fact of the
// register); otherwise a Black node costs one proof per reply, a White node one proof.
TProofNumbers TProofNumberSearch::FreshNumbers(const TChessboard& child) {
    if (m_env.useGlobalRules && WhiteCannotMate(child)) return kDisproven;
    const bool stored = m_env.store && SquaresTellAll(child);
    const int n = child.movesLeft;
    int replies = 1;
    if (child.WhiteToMove()) {
        if (n <= 1) {
            ++m_stats.mateInOneTests;
            return n == 1 && HasMateInOne(child) ? kProven : kDisproven;
        }
    } else {
        if (n <= 0) return IsMate(child) ? kProven : kDisproven;
        replies = CountLegalMoves(child);
        if (replies == 0) return child.InCheck() ? kProven : kDisproven;
    }
    if (stored) {
        const uint8_t known = m_env.store->Lookup(child, n);
        if (known == kMate || known == kNoMate) {
            ++m_stats.registerHits;
            return known == kMate ? kProven : kDisproven;
        }
    }
    uint8_t settled;
    if (m_env.globalRegister && m_env.globalRegister->Settle(child, settled)) {
        ++m_stats.precalcHits;
        return settled == kMate ? kProven : kDisproven;
    }
    return {static_cast<uint32_t>(replies), 1};
}

TProofNumbers TProofNumberSearch::Evaluate(const TChessboard& child, const TPositionKey& key) {
    ++m_stats.evaluated;
    TProofNumbers numbers;
    if (child.movesLeft < 2) return FreshNumbers(child);
    if (m_table.Probe(key, numbers)) {
        ++m_stats.tableHits;
        return numbers;
    }
    // Kept at once: a node is entered again and again before it is expanded, and its first
    // numbers cost a count of Black's replies and a register look-up.
    numbers = FreshNumbers(child);
    m_table.Store(key, numbers, 1);
    return numbers;
}

bool TProofNumberSearch::AddChildren(const TChessboard& node, size_t first, TProofNumbers& settled) {
    const bool orNode = node.WhiteToMove();
    TMoveList moves;
    GenerateLegalMoves(node, moves);
    if (moves.count == 0) {  // White cannot mate without a move; Black is mated or stalemated
        settled = !orNode && node.InCheck() ? kProven : kDisproven;
        return false;
    }
    // Black's checks are not put first here: the numbers choose the defence to follow, and the
    // order only settles their ties, where checks first cost the long moremovers nodes.
    const TKillerMoves none;
    if (orNode)
        OrderWhiteMoves(node, moves, none, false);
    else
        OrderBlackMoves(node, moves, none, false);
    // Each child is played once, a little ahead of its evaluation: its table bucket is asked for
    // as it is played, its register bucket and entries (for its first numbers) as it comes nearer.
    CChildrenAhead children(node, moves, m_env.store, [&](int i, const TChessboard& child) {
        m_children.push_back({moves.moves[i], PositionKey(child), {}});
        m_table.Prefetch(m_children.back().key);
    });
    for (int i = 0; i < moves.count; ++i) {
        const TChessboard& child = children.Child(i);  // the list has its entry from now on
        const size_t k = first + static_cast<size_t>(i);
        const TPositionKey key = m_children[k].key;
        const TProofNumbers numbers = Evaluate(child, key);
        if (orNode ? numbers.Proven() : numbers.Disproven()) {
            settled = numbers;
            return false;
        }
        m_children[k].numbers = numbers;
    }
    return true;
}

bool TProofNumberSearch::SettledByShortSearch(const TChessboard& node, TProofNumbers& numbers) {
    if (node.movesLeft > kShortSearchHalfMoves) return false;
    const uint64_t before = m_short.Nodes();
    const uint8_t result = m_short.FindForcedMate(node);  // no heuristics: kMate or kNoMate
    ++m_stats.shortSearches;
    m_stats.shortSearchNodes += m_short.Nodes() - before;
    if (result != kMate && result != kNoMate) return false;
    numbers = result == kMate ? kProven : kDisproven;
    return true;
}

TMove TProofNumberSearch::ShortMatingMove(const TChessboard& node) {
    if (!node.WhiteToMove() || node.movesLeft > kShortSearchHalfMoves) return TMove{};
    return m_short.MatingMove(node, node.movesLeft);
}

int TProofNumberSearch::KnownMateDistance(const TChessboard& node) const {
    return m_env.globalRegister ? m_env.globalRegister->MateDistance(node) : -1;
}

void TProofNumberSearch::Record(const TChessboard& node, const TPositionKey& key,
                                const TProofNumbers& numbers, uint64_t work) {
    m_table.Store(key, numbers, work);
    if (!numbers.Settled()) return;
    ++(numbers.Proven() ? m_stats.proven : m_stats.disproven);
    if (m_env.store && SquaresTellAll(node))
        m_env.store->Store(node, node.movesLeft, numbers.Proven() ? kMate : kNoMate);
}

// The df-pn step: works below `node` until its proof number reaches `thpn` or its disproof
// number `thdn` (a settled node reaches one of them at once), always in the child that is
// cheapest to settle the node with.
void TProofNumberSearch::Expand(const TChessboard& node, const TPositionKey& key, uint32_t thpn,
                                uint32_t thdn, TProofNumbers& numbers) {
    CountNode();
    const uint64_t startNodes = m_stats.nodes;
    const bool orNode = node.WhiteToMove();
    const size_t first = m_children.size();
    if (SettledByShortSearch(node, numbers) || !AddChildren(node, first, numbers)) {
        m_children.resize(first);
        Record(node, key, numbers, 1);
        return;
    }
    const size_t last = m_children.size();
    while (true) {
        // OR node: the cheapest proof among the children, and as disproof the largest child's plus
        // one for each other open child (White's moves lead into the same positions again and
        // again, so that a sum counts the work below them many times over); an AND node: the
        // cheapest disproof and the sum of the proofs. `best` is the child that decides the
        // node's number, `second` the next cheapest.
        uint32_t minimum = kInfinity, second = kInfinity, sum = 0, largest = 0, open = 0;
        size_t best = first;
        for (size_t i = first; i < last; ++i) {
            const TProofNumbers& c = m_children[i].numbers;
            const uint32_t decisive = orNode ? c.pn : c.dn;
            const uint32_t other = orNode ? c.dn : c.pn;
            sum = Add(sum, other);
            largest = std::max(largest, other);
            open += other != 0;
            if (decisive < minimum) {
                second = minimum;
                minimum = decisive;
                best = i;
            } else if (decisive < second) {
                second = decisive;
            }
        }
        if (orNode && open > 0) sum = Add(largest, open - 1);
        if (minimum == 0) sum = kInfinity;  // settled: the other number is infinite
        numbers = orNode ? TProofNumbers{minimum, sum} : TProofNumbers{sum, minimum};
        if (numbers.pn >= thpn || numbers.dn >= thdn) break;
        TChild& chosen = m_children[best];
        const uint32_t childPn = chosen.numbers.pn, childDn = chosen.numbers.dn;
        const uint32_t thpnChild = orNode ? std::min(thpn, Widen(second)) : Share(thpn, numbers.pn, childPn);
        const uint32_t thdnChild = orNode ? Share(thdn, numbers.dn, childDn) : std::min(thdn, Widen(second));
        TChessboard child;
        PlayMove(node, chosen.move, child);
        const TPositionKey childKey = chosen.key;
        TProofNumbers result;
        Expand(child, childKey, thpnChild, thdnChild, result);
        m_children[best].numbers = result;  // the vector may have grown: index, not reference
    }
    m_children.resize(first);
    Record(node, key, numbers, m_stats.nodes - startNodes + 1);
}

}  // namespace moremate
