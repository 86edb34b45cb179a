// Checks every stored value of a type against one move ahead: a stored mate in v has a move to a
// position stored as mated after v - 1 more moves and none quicker; a Black position's value is
// one more than its longest defence; "no mate" has no move that would settle it. Disagreements
// are listed in a fault file beside the data.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "precalc/global/global_registers.h"

namespace moremate {

struct TVerificationReport {
    uint64_t m_nChecked = 0;
    uint64_t m_nFaults = 0;
    std::vector<std::string> m_vFaults;  // the first ones: FEN, side to move, stored and expected
    std::filesystem::path m_faultFile;   // written when there are faults
};

TVerificationReport VerifyTypeData(TGlobalRegisters& registers, TGlobalRegister& reg, unsigned threads,
                                   bool bProgress);

}  // namespace moremate
