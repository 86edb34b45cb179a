#include "observed_lines.h"

#include <fmt/core.h>

#include <algorithm>

#include "core/notation.h"

namespace moremate {
namespace {

constexpr uint32_t kCaptureBit = 1u << 12;

uint32_t Pack(const TChessboard& node, const TMove& move) {
    const bool enPassant = TypeOf(node.squares[move.from]) == kPawn && move.to == node.epSquare;
    const bool captures = node.squares[move.to] != kEmpty || enPassant;
    return static_cast<uint32_t>(move.from) | static_cast<uint32_t>(move.to) << 6 |
           (captures ? kCaptureBit : 0) | static_cast<uint32_t>(move.promotion) << 16 |
           static_cast<uint32_t>(node.squares[move.from]) << 24;
}

TObservedMove Unpack(uint32_t code) {
    TObservedMove m;
    m.move.from = static_cast<Square>(code & 63);
    m.move.to = static_cast<Square>((code >> 6) & 63);
    m.move.promotion = static_cast<uint8_t>(code >> 16);
    m.piece = static_cast<Piece>(code >> 24);
    m.captures = (code & kCaptureBit) != 0;
    return m;
}

}  // namespace

CObservedLines::CObservedLines(size_t threads, size_t moves)
    : m_nThreads(threads),
      m_nMoves(std::min(moves, kMaxObservedMoves)),
      m_slots(std::make_unique<TObservedSlot[]>(threads)) {}

TObservedSlot* CObservedLines::Slot(size_t thread) {
    return thread < m_nThreads && m_nMoves > 0 ? &m_slots[thread] : nullptr;
}

std::vector<std::vector<TObservedMove>> CObservedLines::Lines() const {
    std::vector<std::vector<TObservedMove>> lines;
    for (size_t t = 0; t < m_nThreads; ++t) {
        std::vector<TObservedMove> line;
        for (size_t i = 0; i < m_nMoves; ++i) {
            const uint32_t code = m_slots[t].moves[i].load(std::memory_order_relaxed);
            if (code == 0) break;
            line.push_back(Unpack(code));
        }
        if (!line.empty()) lines.push_back(std::move(line));
    }
    return lines;
}

std::string CObservedLines::Text() const {
    std::string text;
    for (const std::vector<TObservedMove>& line : Lines()) {
        text += text.empty() ? "Observed:" : " |";
        for (size_t i = 0; i < line.size(); ++i)
            text += fmt::format(" {}.{}", i + 1, MoveToText(line[i].move, line[i].piece, line[i].captures));
    }
    return text;
}

void CObservedLine::Attach(TObservedSlot* slot, size_t moves) {
    m_pSlot = slot;
    m_nMoves = std::min(moves, kMaxObservedMoves);
    m_nEndPly = INT_MIN;
}

void CObservedLine::FirstMove(const TChessboard& root, const TMove& move) {
    m_nEndPly = INT_MIN;
    if (m_pSlot) Publish(0, root, move);
}

void CObservedLine::From(int ply) {
    if (!m_pSlot) return;
    m_nFirstPly = ply;
    m_nEndPly = ply + 2 * (static_cast<int>(m_nMoves) - 1);
}

void CObservedLine::Clear() {
    m_nEndPly = INT_MIN;
    if (m_pSlot) m_pSlot->moves[0].store(0, std::memory_order_relaxed);
}

void CObservedLine::Publish(size_t index, const TChessboard& node, const TMove& move) {
    m_pSlot->moves[index].store(Pack(node, move), std::memory_order_relaxed);
    if (index + 1 < m_nMoves) m_pSlot->moves[index + 1].store(0, std::memory_order_relaxed);
}

}  // namespace moremate
