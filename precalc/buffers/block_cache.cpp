#include "block_cache.h"

namespace moremate::RandomAccessLZWBuffer {

std::array<std::unique_lock<std::mutex>, CBlockCache::kStripes> CBlockCache::LockAll() {
    std::array<std::unique_lock<std::mutex>, kStripes> locks;
    for (size_t i = 0; i < kStripes; ++i) locks[i] = std::unique_lock(m_stripes[i].mutex);
    return locks;
}

}  // namespace moremate::RandomAccessLZWBuffer
