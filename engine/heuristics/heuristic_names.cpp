#include "heuristic_names.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>

namespace moremate {
namespace {

constexpr std::string_view kUnnamed = "...";

// Names indexed by bit position.
constexpr std::array<std::string_view, kHeuristicBitCount> kNames = {
    "SH_AREKINGSNEAR",
    "SH_SWEEPINGWHITEROOK",
    "SH_KEEPKINGONTHEEDGE",
    "SH_ONECOLORPLAYPOSSIBLE",
    "SH_ZUGZWANGTRIANGLES",
    "SH_DONTLEAVEMAINDIAGONAL",
    "SH_KEEPKINGWITHINEXTEDGE",
    "SH_DONTLETFIGUREUNBLOCK",
    kUnnamed,
    "SH_FINDFORCEDMATE",
    "SH_DONTRECEDEBLACKKING",
    "SH_DONTLETPROMOTEDQUEENMOVE",
    "SH_KEYLINE",
    "SH_KEYDIAGONAL",
    "SH_SAVEQUEEN/ROOK",
    "SH_DONTLOSEANYFIGURES",
    "SH_DONTLETBLACKQUEENCHECKTWICE",
    "SH_USEBLOCKBLACKPAWNSLEVEL",
    "SH_KEYSQUARE",
    "SH_ASSERTBLACKKINGSURROUNDED",
    "SH_SINGLEQUEENMATE",
    "SH_3MOVESTOMATE",
    "SH_KEYWHITEFIGURE",
    "SH_CAPTUREKNIGHT",
    "SH_SKIPWORSTWHITEMOVES",
    "SH_DONTLETPROMOTEDFIGUREMOVE",
    "SH_KEEPKINGNEARCORNER",
    "SH_SEASNAKE",
    kUnnamed,
    kUnnamed,
    "SH_REDUCTIONTOGLOBREGPOS",
    "SH_ZUGZWANG",
};

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) {
        return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
    });
}

}  // namespace

std::string_view HeuristicName(uint32_t mask) {
    return std::has_single_bit(mask) ? kNames[std::countr_zero(mask)] : kUnnamed;
}

uint32_t HeuristicFromName(std::string_view name) {
    for (int bit = 0; bit < kHeuristicBitCount; ++bit)
        if (kNames[bit] != kUnnamed && EqualIgnoringCase(kNames[bit], name)) return uint32_t{1} << bit;
    return 0;
}

}  // namespace moremate
