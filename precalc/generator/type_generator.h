// The level-by-level generation of one position type (see generator.h), all in memory.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "precalc/generator/generator.h"
#include "precalc/generator/lookahead.h"
#include "precalc/generator/progress_line.h"

namespace moremate {

class CTypeGenerator {
  public:
    CTypeGenerator(const TPrecalcType& type, TGlobalRegisters& registers, const TGenerationOptions& options);
    // The elements of the doubled index space, one byte each.
    std::vector<uint8_t> Run(TGenerationReport& report);
    // The memory the generation of `type` takes at most.
    static uint64_t PeakBytes(const TPrecalcType& type);

  private:
    struct CArraySource {
        std::vector<uint8_t>& m_white;
        std::vector<uint8_t>& m_black;
        uint8_t White(uint64_t i) const {
            return std::atomic_ref<uint8_t>(m_white[i]).load(std::memory_order_relaxed);
        }
        uint8_t Black(uint64_t i) const {
            return std::atomic_ref<uint8_t>(m_black[i]).load(std::memory_order_relaxed);
        }
    };
    using TIndexLists = std::vector<std::vector<uint32_t>>;

    void ScanWhite();
    void ScanBlack();
    bool Level(int d);
    // Calls visit(placement, before, move, index before, thread) for every move of `mover` that
    // can have led into one of `placements`, spread over the threads.
    template <class FVisit>
    void ForEachTakeBack(const std::vector<uint32_t>& placements, uint8_t mover, FVisit&& visit);
    void TakeBackWhiteMoves(int d, TIndexLists& found);
    void SettleWhite(int d, const std::vector<uint32_t>& indexes, TIndexLists& found);
    void CheckWhiteSpecials(int d, TIndexLists& found);
    std::vector<uint32_t> BlackCandidates();
    bool CheckBlack(int d, const std::vector<uint32_t>& candidates);
    bool ClaimWhite(uint64_t i, uint8_t v) {
        uint8_t expected = 0;
        return std::atomic_ref<uint8_t>(m_white[i]).compare_exchange_strong(expected, v);
    }
    bool HasOpenEnPassantMove(const TChessboard& board) const;
    bool CanLeaveType(uint8_t mover) const;
    bool MayLeaveType(const TChessboard& board) const;
    void Append(TIndexLists& byValue, const TIndexLists& perThread, const std::vector<uint8_t>& values);
    std::vector<uint32_t> Merge(TIndexLists& perThread) const;
    bool PendingAfter(int d) const;
    void Show(const std::string& what, bool force = false);

    const TPrecalcType& m_type;
    const TGenerationOptions& m_options;
    uint64_t m_nPlacements;
    bool m_bBothPawns = false;
    std::vector<uint8_t> m_white, m_black, m_candidate;
    // Black positions: the moves to stored positions of the type still unsettled.
    std::vector<uint8_t> m_unsettledMoves;
    TIndexLists m_whiteSeeds, m_blackByValue;  // by value
    std::vector<uint32_t> m_whiteSpecials, m_blackSpecials, m_newWhite;
    CArraySource m_source;
    COtherTypes m_others;
    CLookahead<CArraySource> m_lookahead;
    CGeneratorProgress m_progress;
    std::atomic<uint64_t> m_nDone{0};
};

}  // namespace moremate
