#include "register_statistics.h"

#include <cstdio>

namespace moremate {

namespace {

std::string Fixed(double value, int nDecimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", nDecimals, value);
    return text;
}

// Levels count half-moves; a stipulation "#m" starts at level 2m - 1.
unsigned MovesOfLevel(uint16_t nLevel) {
    return (nLevel + 1u) / 2;
}

}  // namespace

std::string RegisterStatistics(const TAggregatedTemporaryChessboardRegister& reg) {
    const TMapCensus own = reg.Census();
    const TMapCensus doubtful = reg.DoubtfulCensus();
    const size_t nBuckets = reg.BucketCount();
    const uint32_t nElements = reg.ElementCount();
    const uint32_t nCapacity = reg.Capacity();
    const double dUse = nCapacity ? 100.0 * nElements / nCapacity : 0.0;
    return "Buckets count = " + std::to_string(nBuckets) + " (" +
           Fixed(static_cast<double>(own.nEntries) / static_cast<double>(nBuckets), 2) +
           " elems per bucket)\n" + "Elements count = " + std::to_string(nElements) + "\n" +
           "Current capacity = " + std::to_string(own.nSlots + doubtful.nSlots) + "\n" +
           "Max. elements count = " + std::to_string(nCapacity) + " (" + Fixed(dUse, 1) + "%)" + "\n\n" +
           "Mate elements = " + std::to_string(own.nFirst) + "\n" +
           "No mate elements = " + std::to_string(own.nSecond) + "\n\n" +
           "Doubtful elements = " + std::to_string(doubtful.nFirst) + "\n" +
           "Not doubtful elements = " + std::to_string(doubtful.nSecond);
}

std::string RegisterSummary(const TAggregatedTemporaryChessboardRegister& reg) {
    const TMapCensus own = reg.Census();
    const TMapCensus doubtful = reg.DoubtfulCensus();
    return "Total number of positions: " + std::to_string(own.nEntries + doubtful.nEntries) + "\n" +
           "Total number of 'mate' positions: " + std::to_string(own.nFirst) + "\n" +
           "Total number of 'no mate' positions: " + std::to_string(own.nSecond) + "\n" +
           "Total number of 'mate doubtful' positions: " + std::to_string(doubtful.nFirst) + "\n" +
           "Total number of 'mate not doubtful' positions: " + std::to_string(doubtful.nSecond) + "\n" +
           "#n range: #" + std::to_string(MovesOfLevel(own.nMinLevel)) + "-" +
           std::to_string(MovesOfLevel(own.nMaxLevel));
}

}  // namespace moremate
