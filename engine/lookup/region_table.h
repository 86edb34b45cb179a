// An open-addressing hash table from a region position's key to a 32-bit value, for the millions
// of positions of the regions of a class: two flat arrays, linear probing, doubled when half full.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace moremate {

class CRegionTable {
  public:
    static constexpr uint32_t kAbsent = 0xffffffffu;

    uint32_t Find(uint64_t key) const;
    // Inserts or overwrites.
    void Set(uint64_t key, uint32_t value);
    // The value of `key`, inserting `value` when the key is new; `added` tells which.
    uint32_t FindOrAdd(uint64_t key, uint32_t value, bool& added);
    size_t Size() const { return m_nCount; }

  private:
    // No key of a position has all bits set: keys use 49 bits at most.
    static constexpr uint64_t kEmpty = ~0ULL;

    size_t Slot(uint64_t key) const;
    // The slot of `key`, taken for it (growing the table first when needed) when it is new.
    size_t Claim(uint64_t key, bool& added);
    void Grow();

    std::vector<uint64_t> m_keys;
    std::vector<uint32_t> m_values;
    size_t m_nCount = 0;
};

}  // namespace moremate
