// Retrograde generation of a position type's data. Every legal placement, with White and with
// Black to move, is classified as "White mates in v" or "no mate". The types reached by captures
// and promotions are generated first (or read from their files).
//
// Level by level: at level d, White positions get v = d when a move leads to a Black position
// mated after d - 1 White moves (found by taking White's moves back from those positions), or
// when a capture or promotion leads there; then the Black positions from which a move leads to a
// newly settled White position are checked move by move, and settle when every move leads to a
// mate. Positions with an en passant capture open after a double step are not stored: the
// positions whose moves reach them are checked anew at every level.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

#include "precalc/global/global_registers.h"

namespace moremate {

struct TGenerationOptions {
    TStorageKind m_kind = TStorageKind::kPlain;
    unsigned m_nThreads = 1;
    bool m_bProgress = false;    // a progress line on stderr
    bool m_bWriteFiles = true;   // else the data stay in memory only
    bool m_bRegenerate = false;  // generate even when a file exists (the types asked for only)
    // Once set, the generation ends before the next type or level with ChessException
    // kGenerationStoppedText; the type under way leaves no file, the types finished keep theirs.
    const std::atomic<bool>* m_pStop = nullptr;
};

inline constexpr const char* kGenerationStoppedText = "Generation stopped";
// Throws ChessException kGenerationStoppedText when the options' stop flag is set.
void ThrowIfGenerationStopped(const TGenerationOptions& options);

struct TGenerationReport {
    std::string m_sDescription;
    uint64_t m_nIndexes = 0;
    uint64_t m_nWhiteMates = 0;
    uint64_t m_nBlackMated = 0;
    int m_nLongestMate = 0;  // White to move, in moves
    int m_nLevels = 0;
    double m_dSeconds = 0;
    uint64_t m_nPeakBytes = 0;
    bool m_bGenerated = false;  // false: read from its file
};

// Makes the type's data available in `registers`, generating what is missing, smaller types
// first. `done` hears of each type made. Throws ChessException when memory does not allow it.
TGlobalRegister& EnsureTypeData(TGlobalRegisters& registers, const TPrecalcType& type,
                                const TGenerationOptions& options,
                                const std::function<void(const TGenerationReport&)>& done = {});

}  // namespace moremate
