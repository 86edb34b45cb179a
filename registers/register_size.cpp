#include "register_size.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace moremate {

TRegisterSize RegisterSizeForCapacity(uint32_t nCapacity) {
    nCapacity = std::max(nCapacity, kMinRegisterCapacity);
    return {nCapacity, std::bit_floor(size_t{nCapacity} / 4)};
}

TRegisterSize RegisterSizeForMemory(uint64_t nMegabytes) {
    const uint64_t nEntries = nMegabytes * (uint64_t{1} << 20) / kRegisterBytesPerEntry;
    return RegisterSizeForCapacity(
        static_cast<uint32_t>(std::min<uint64_t>(nEntries, std::numeric_limits<uint32_t>::max())));
}

}  // namespace moremate
