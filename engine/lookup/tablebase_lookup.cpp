#include "tablebase_lookup.h"

#include <algorithm>

#include "core/movegen.h"
#include "core/pooled_thread.h"
#include "tablebase/tablebase_position.h"
#include "tablebase_facts.h"

namespace moremate {
namespace {

// Each level below adds at most two captures (White's and Black's): a position with more pieces
// than that can take off leads to no position the tablebase holds.
bool MayReachTablebase(const TChessboard& node, int levelsBelow) {
    return PieceCount(node) - 2 * levelsBelow <= kMaxTablebasePieces;
}

}  // namespace

CTablebaseLookup::CTablebaseLookup(CLiChess& liChess, CPositionStore& store, const TChessboard& root,
                                   int levels)
    : m_liChess(liChess), m_store(store), m_root(root), m_nLevels(levels) {
    // Most problems have too many pieces to ask anything: no thread for them.
    if (m_nLevels >= 1 && m_root.WhiteToMove() && WorthVisiting(m_root, 1))
        m_thread = CPooledThread([this] { Visit(m_root, 1); });
}

CTablebaseLookup::~CTablebaseLookup() {
    Stop();
}

void CTablebaseLookup::Stop() {
    m_bStop = true;
    Wait();
}

void CTablebaseLookup::Wait() {
    if (m_thread.joinable()) m_thread.join();
}

void CTablebaseLookup::Ask(const TChessboard& node) {
    const std::optional<TTablebaseLookup> lookup = m_liChess.Query(node, &m_bStop);
    if (!lookup || !AnswerFits(node, lookup->answer)) return;
    ++m_nAnswers;
    m_nFacts += StoreTablebaseFacts(node, lookup->answer, m_store);
}

bool CTablebaseLookup::WorthVisiting(const TChessboard& node, int level) const {
    return !m_bStop && m_liChess.Online() && MayReachTablebase(node, m_nLevels - level);
}

void CTablebaseLookup::Visit(const TChessboard& node, int level) {
    if (!WorthVisiting(node, level)) return;
    std::array<uint8_t, 64> squares;
    std::copy(std::begin(node.squares), std::end(node.squares), squares.begin());
    if (!m_visited.insert(squares).second) return;
    if (WhyNotAskable(node).empty()) Ask(node);
    if (level >= m_nLevels || node.movesLeft < 3) return;
    TMoveList whiteMoves;
    GenerateLegalMoves(node, whiteMoves);
    for (int i = 0; i < whiteMoves.count; ++i) {
        TChessboard black;
        PlayMove(node, whiteMoves.moves[i], black);
        TMoveList replies;
        GenerateLegalMoves(black, replies);
        for (int j = 0; j < replies.count; ++j) {
            TChessboard white;
            PlayMove(black, replies.moves[j], white);
            Visit(white, level + 1);
        }
    }
}

}  // namespace moremate
