// The temporary register of one solving run, as the search sees it: proofs (mate / no mate) in
// the run's own store, "mate doubtful" lines in the store of the pass's heuristic set, each tied
// to the half-moves it was found with (kept on the no-proof side of its entry).
// A register entry is keyed by the 64 squares alone and merges the results of all n, so the
// positions with White to move (odd n) and those with Black to move (even n) are kept in two
// registers that share the memory quota.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/search/position_store.h"
#include "registers/aggregated_register.h"
#include "registers/chunk_allocator.h"
#include "settings/options.h"

namespace moremate {

class CRunRegister : public CPositionStore {
  public:
    // Sized from the memory share of the options (MaxMemRatioForTempReg).
    explicit CRunRegister(const TOptions& options);
    // Sized for a given element count (scripts and tests).
    explicit CRunRegister(uint32_t capacity);

    // The heuristic set of the pass now running; 0 and 0 for a pass without heuristics.
    void SetConfiguration(uint32_t heuristics, uint32_t parameters);

    uint8_t LookupSquares(const TChessboardRegisterItem& squares, uint32_t hash, int halfMoves) override;
    void Store(const TChessboard& position, int halfMoves, uint8_t result) override;
    void PrefetchBucket(uint32_t hash, int halfMoves) override;
    void Prefetch(uint32_t hash, int halfMoves) override;

    int FillPercent() const;
    // The register of White-to-move positions (the one saved to files) and of Black-to-move ones.
    TAggregatedTemporaryChessboardRegister& WhiteToMove() { return *m_white; }
    TAggregatedTemporaryChessboardRegister& BlackToMove() { return *m_black; }

  private:
    TAggregatedTemporaryChessboardRegister& For(int halfMoves) const {
        return halfMoves & 1 ? *m_white : *m_black;
    }

    // While the run's registers live, their fresh memory is cleared ahead on a spare core.
    CChunkReserveScope m_chunkReserve;
    std::unique_ptr<TAggregatedTemporaryChessboardRegister> m_white, m_black;
    uint64_t m_nConfiguration = 0;
};

}  // namespace moremate
