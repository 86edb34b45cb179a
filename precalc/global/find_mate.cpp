#include "find_mate.h"

#include <stdexcept>

#include "core/movegen.h"

namespace moremate {

bool FindMateByGlobalRegister(TGlobalRegisters& registers, const TChessboard& position, int n,
                              uint64_t excludedFrom, uint64_t excludedTo) {
    const auto excluded = [&](const TMove& m) {
        return (excludedFrom >> m.from & 1) != 0 || (excludedTo >> m.to & 1) != 0;
    };
    TMoveList moves;
    GenerateLegalMoves(position, moves);
    if (n == 1) {
        for (const TMove& m : moves) {
            TChessboard child;
            PlayMove(position, m, child);
            if (!excluded(m) && IsMate(child)) return true;
        }
        return false;
    }
    if (position.movesLeft == 1) throw std::runtime_error(kMovesCannotBeOneText);
    for (const TMove& m : moves) {
        if (excluded(m)) continue;
        TChessboard child;
        PlayMove(position, m, child);
        const std::optional<TPrecalcType> type = TPrecalcType::OfPosition(child.squares);
        if (!type) continue;
        const int halfMoves = registers.Require(*type).HalfMovesToMate(child);
        if (halfMoves >= 0 && halfMoves <= 2 * (n - 1)) return true;
    }
    return false;
}

}  // namespace moremate
