#include "region_table.h"

namespace moremate {

size_t CRegionTable::Slot(uint64_t key) const {
    const size_t mask = m_keys.size() - 1;
    uint64_t h = (key ^ (key >> 29)) * 0xbf58476d1ce4e5b9ULL;
    h = (h ^ (h >> 32)) * 0x94d049bb133111ebULL;
    size_t slot = static_cast<size_t>(h >> 32) & mask;
    while (m_keys[slot] != kEmpty && m_keys[slot] != key) slot = (slot + 1) & mask;
    return slot;
}

uint32_t CRegionTable::Find(uint64_t key) const {
    if (m_keys.empty()) return kAbsent;
    const size_t slot = Slot(key);
    return m_keys[slot] == key ? m_values[slot] : kAbsent;
}

size_t CRegionTable::Claim(uint64_t key, bool& added) {
    if (2 * (m_nCount + 1) > m_keys.size()) Grow();
    const size_t slot = Slot(key);
    added = m_keys[slot] != key;
    if (added) {
        m_keys[slot] = key;
        ++m_nCount;
    }
    return slot;
}

uint32_t CRegionTable::FindOrAdd(uint64_t key, uint32_t value, bool& added) {
    const size_t slot = Claim(key, added);
    if (added) m_values[slot] = value;
    return m_values[slot];
}

void CRegionTable::Set(uint64_t key, uint32_t value) {
    bool added = false;
    m_values[Claim(key, added)] = value;
}

void CRegionTable::Grow() {
    std::vector<uint64_t> keys(m_keys.empty() ? 1024 : 2 * m_keys.size(), kEmpty);
    std::vector<uint32_t> values(keys.size());
    keys.swap(m_keys);
    values.swap(m_values);
    for (size_t i = 0; i < keys.size(); ++i) {
        if (keys[i] == kEmpty) continue;
        const size_t slot = Slot(keys[i]);
        m_keys[slot] = keys[i];
        m_values[slot] = values[i];
    }
}

}  // namespace moremate
