// The special heuristics' bits in a heuristic set and the names by which logs, problem files and
// solution details refer to them.
#pragma once

#include <cstdint>
#include <string_view>

namespace moremate {

// One bit per special heuristic; bits 0x100, 0x10000000 and 0x20000000 have no heuristic.
enum SpecialHeuristic : uint32_t {
    SH_AREKINGSNEAR = 0x00000001,
    SH_SWEEPINGWHITEROOK = 0x00000002,
    SH_KEEPKINGONTHEEDGE = 0x00000004,
    SH_ONECOLORPLAYPOSSIBLE = 0x00000008,
    SH_ZUGZWANGTRIANGLES = 0x00000010,
    SH_DONTLEAVEMAINDIAGONAL = 0x00000020,
    SH_KEEPKINGWITHINEXTEDGE = 0x00000040,
    SH_DONTLETFIGUREUNBLOCK = 0x00000080,
    SH_FINDFORCEDMATE = 0x00000200,
    SH_DONTRECEDEBLACKKING = 0x00000400,
    SH_DONTLETPROMOTEDQUEENMOVE = 0x00000800,
    SH_KEYLINE = 0x00001000,
    SH_KEYDIAGONAL = 0x00002000,
    SH_SAVEQUEENROOK = 0x00004000,  // named "SH_SAVEQUEEN/ROOK"
    SH_DONTLOSEANYFIGURES = 0x00008000,
    SH_DONTLETBLACKQUEENCHECKTWICE = 0x00010000,
    SH_USEBLOCKBLACKPAWNSLEVEL = 0x00020000,
    SH_KEYSQUARE = 0x00040000,
    SH_ASSERTBLACKKINGSURROUNDED = 0x00080000,
    SH_SINGLEQUEENMATE = 0x00100000,
    SH_3MOVESTOMATE = 0x00200000,
    SH_KEYWHITEFIGURE = 0x00400000,
    SH_CAPTUREKNIGHT = 0x00800000,
    SH_SKIPWORSTWHITEMOVES = 0x01000000,
    SH_DONTLETPROMOTEDFIGUREMOVE = 0x02000000,
    SH_KEEPKINGNEARCORNER = 0x04000000,
    SH_SEASNAKE = 0x08000000,
    SH_REDUCTIONTOGLOBREGPOS = 0x40000000,
    SH_ZUGZWANG = 0x80000000,
};

inline constexpr int kHeuristicBitCount = 32;

// The name of a mask holding exactly one named bit; "..." for any other mask.
std::string_view HeuristicName(uint32_t mask);

// The bit named `name`, compared without regard to case and tried from bit 0 upward; 0 when no
// heuristic has that name.
uint32_t HeuristicFromName(std::string_view name);

}  // namespace moremate
