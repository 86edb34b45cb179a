// One move ahead from a position of the type being generated: the value of each move's position
// read from the data, whether it stays in the type (the same index space), leaves it by a
// capture or a promotion (a smaller or other type, already generated) or, in a custom type, by a
// piece going where the type does not allow (the standard type of the material), or opens an en passant
// capture (not stored: worked out one more move ahead).
//
// Values: White to move v (mates in v moves), Black to move s (White mates after s - 1 more
// moves), 0 unresolved. A limit L keeps the level order of the generator: a White value counts
// only when v <= L, a Black one when s - 1 <= L.
#pragma once

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>

#include "core/movegen.h"
#include "precalc/global/global_register.h"
#include "precalc/global/global_registers.h"

namespace moremate {

inline constexpr uint8_t kEscapes = 255;  // Black to move, certainly no mate
inline constexpr int kNoLimit = INT_MAX / 2;

// Sets up a placement of `type` with a side to move; false for an illegal position (the side not
// to move in check, kings touching, two pieces on a square).
bool SetUpPlacement(const TPrecalcType& type, uint64_t nPlacement, bool bWhiteToMove, TChessboard& board);
bool EnPassantOpen(const TChessboard& board);

// Values of the positions after a move that leaves the type; the largest value read is kept.
class COtherTypes {
  public:
    explicit COtherTypes(TGlobalRegisters& registers) : m_registers(registers) {}
    // White to move: v, 0 for no mate. Black to move: s, 0 for no mate. 0 also for unknown.
    uint8_t Value(const TChessboard& board);
    int LargestValue() const { return m_nLargest.load(std::memory_order_relaxed); }

  private:
    TGlobalRegisters& m_registers;
    std::atomic<int> m_nLargest{0};
};

// `Source` gives the stored values of the type itself: White(placement), Black(placement).
template <typename Source>
class CLookahead {
  public:
    CLookahead(const TPrecalcType& type, Source& source, COtherTypes& others)
        : m_type(type), m_source(source), m_others(others) {}

    // White to move: the quickest mate through a move, v <= limit, else 0.
    uint8_t WhiteValue(const TChessboard& board, int limit) const {
        TMoveList moves;
        GenerateLegalMoves(board, moves);
        const TPrecalcType::TPieceSquares pieces = m_type.PiecesOf(board.squares);
        uint8_t best = 0;
        for (const TMove& m : moves) {
            TChessboard child;
            PlayMove(board, m, child);
            const uint8_t s = BlackChild(board, child, pieces, m, limit - 1);
            if (s != 0 && s != kEscapes && (best == 0 || s < best)) best = s;
        }
        return best;
    }

    // Black to move: s when every move leads to a mate (White values <= limit; those of other
    // types at any size unless `limitOthers`), kEscapes when a move certainly escapes, else 0.
    // `pStaying` counts the moves to stored positions of the type (not after kEscapes).
    uint8_t BlackValue(const TChessboard& board, int limit, bool limitOthers, int* pStaying = nullptr) const {
        TMoveList moves;
        GenerateLegalMoves(board, moves);
        if (moves.count == 0) return board.InCheck() ? 1 : kEscapes;
        const TPrecalcType::TPieceSquares pieces = m_type.PiecesOf(board.squares);
        uint8_t longest = 0;
        bool open = false;
        for (const TMove& m : moves) {
            TChessboard child;
            PlayMove(board, m, child);
            uint8_t v;
            if (EnPassantOpen(child)) {
                v = WhiteValue(child, limit);
            } else if (const TPrecalcType::TPieceSquares moved = TPrecalcType::Moved(pieces, m.from, m.to);
                       MaterialKey(child) != MaterialKey(board) || !m_type.Contains(moved)) {
                v = m_others.Value(child);
                if (v == 0) return kEscapes;
                if (limitOthers && v > limit) v = 0;
            } else {
                v = m_source.White(m_type.IndexOfPieces(moved));
                if (v > limit) v = 0;
                if (pStaying) ++*pStaying;
            }
            if (v == 0) open = true;
            longest = std::max(longest, v);
        }
        return open ? 0 : static_cast<uint8_t>(longest + 1);
    }

  private:
    uint8_t BlackChild(const TChessboard& parent, const TChessboard& child,
                       const TPrecalcType::TPieceSquares& pieces, const TMove& m, int limit) const {
        uint8_t s;
        if (EnPassantOpen(child)) {
            s = BlackValue(child, limit, true);
        } else if (const TPrecalcType::TPieceSquares moved = TPrecalcType::Moved(pieces, m.from, m.to);
                   MaterialKey(child) != MaterialKey(parent) || !m_type.Contains(moved)) {
            s = m_others.Value(child);
        } else {
            s = m_source.Black(m_type.IndexOfPieces(moved));
        }
        return s != 0 && s != kEscapes && s - 1 <= limit ? s : 0;
    }

    const TPrecalcType& m_type;
    Source& m_source;
    COtherTypes& m_others;
};

}  // namespace moremate
