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

CGlobalRegisterHook* ProcessPrecalcHook() {
    static CPrecalcHook s_hook(TGlobalRegisters::Instance());
    return TGlobalRegisters::Instance().TypesOnDisk().empty() ? nullptr : &s_hook;
}

}  // namespace moremate
