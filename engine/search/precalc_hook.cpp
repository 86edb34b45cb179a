#include "precalc_hook.h"

#include "engine/state/search_result.h"

namespace moremate {

bool CPrecalcHook::Settle(const TChessboard& node, uint8_t& result) {
    TGlobalRegister* reg = m_registers.Find(node);
    if (!reg) return false;
    const int halfMoves = reg->HalfMovesToMate(node);
    const bool mate = halfMoves >= 0 && halfMoves <= node.movesLeft;
    m_registers.Count(halfMoves != kStoredUnknown, mate);
    if (halfMoves == kStoredUnknown) return false;
    result = mate ? kMate : kNoMate;
    return true;
}

// The stored half-moves to mate counted in White's moves: 2v - 1 half-moves with White to move
// and 2v with Black to move are both v moves of White's, (h + 1) / 2.
int CPrecalcHook::MateDistance(const TChessboard& node) {
    const TGlobalRegister* reg = m_registers.Find(node);
    const int halfMoves = reg ? reg->HalfMovesToMate(node) : kStoredUnknown;
    return halfMoves < 0 ? -1 : (halfMoves + 1) / 2;
}

CGlobalRegisterHook* ProcessPrecalcHook() {
    static CPrecalcHook s_hook(TGlobalRegisters::Instance());
    return TGlobalRegisters::Instance().TypesOnDisk().empty() ? nullptr : &s_hook;
}

}  // namespace moremate
