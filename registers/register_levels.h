// A register's records grouped by the level at which a save writes them, read in one pass over
// the register (each bucket under its lock), so that a save by levels costs one pass, not one
// per level.
//
// An entry is written at level n when MovesNoMate = n, or MovesMate = n and MovesNoMate <= n,
// and MovesMate <= n: that is at exactly one level, the larger of its two values. Entries with
// both values 0 hold nothing and are left out.
#pragma once

#include <cstdint>
#include <vector>

#include "aggregated_register.h"

namespace moremate {

class CRegisterLevels {
  public:
    explicit CRegisterLevels(const TAggregatedTemporaryChessboardRegister& reg);

    // The levels with records; 1 and 1 for a register without any.
    uint16_t FirstLevel() const { return m_nFirst; }
    uint16_t LastLevel() const { return m_nLast; }

    // The 68-byte records of level n in register order, each doubtfulness group's records after
    // a 12-byte marker of their configuration; the mate / no-mate group's come first, unmarked.
    const std::vector<uint8_t>& Records(uint16_t n) const;
    // Frees the records of level n once written.
    void Release(uint16_t n);

  private:
    struct TLevel {
        std::vector<uint8_t> bytes;
        uint64_t nGroup = 0;
    };
    void Add(uint64_t nConfiguration, const TChessboardRegisterEntry& entry);

    std::vector<TLevel> m_levels;
    uint16_t m_nFirst = 1;
    uint16_t m_nLast = 1;
};

// The 12 bytes that open a group: u32 0xFFFFFFFF and the u64 configuration key.
void AppendMarker(std::vector<uint8_t>& bytes, uint64_t nConfiguration);
// A marker's first two u16 values are both 0xFFFF; a record's MovesMate never is.
inline bool IsGroupMarker(const uint8_t* p) {
    return p[0] == 0xFF && p[1] == 0xFF && p[2] == 0xFF && p[3] == 0xFF;
}

}  // namespace moremate
