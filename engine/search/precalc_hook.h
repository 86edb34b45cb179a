// The search's look-up of precalculated data: a node whose material is a loaded position type is
// settled from the stored distance to mate, measured against the node's half-moves left.
#pragma once

#include "precalc/global/global_registers.h"
#include "search_hooks.h"

namespace moremate {

class CPrecalcHook : public CGlobalRegisterHook {
  public:
    explicit CPrecalcHook(TGlobalRegisters& registers) : m_registers(registers) {}
    bool Settle(const TChessboard& node, uint8_t& result) override;
    int MateDistance(const TChessboard& node) override;

  private:
    TGlobalRegisters& m_registers;
};

// The hook of the process's registers, or null when none of their types has data on disk.
CGlobalRegisterHook* ProcessPrecalcHook();

}  // namespace moremate
