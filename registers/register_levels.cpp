#include "register_levels.h"

#include <algorithm>
#include <limits>

#include "register_file.h"

namespace moremate {
namespace {

void AppendRecord(std::vector<uint8_t>& bytes, const TChessboardRegisterEntry& entry) {
    const uint16_t nMate = entry.MovesMate;
    const uint16_t nNoMate = entry.MovesNoMate;
    bytes.insert(bytes.end(), {static_cast<uint8_t>(nMate), static_cast<uint8_t>(nMate >> 8),
                               static_cast<uint8_t>(nNoMate), static_cast<uint8_t>(nNoMate >> 8)});
    bytes.insert(bytes.end(), entry.key.squares, entry.key.squares + sizeof entry.key.squares);
}

}  // namespace

void AppendMarker(std::vector<uint8_t>& bytes, uint64_t nConfiguration) {
    bytes.insert(bytes.end(), 4, 0xFF);
    for (int i = 0; i < 8; ++i) bytes.push_back(static_cast<uint8_t>(nConfiguration >> (8 * i)));
}

CRegisterLevels::CRegisterLevels(const TAggregatedTemporaryChessboardRegister& reg) {
    m_nFirst = std::numeric_limits<uint16_t>::max();
    m_nLast = 0;
    reg.ForEachConfigurationEntry([this](uint64_t nConfiguration, const TChessboardRegisterEntry& entry) {
        Add(nConfiguration, entry);
    });
    if (m_nLast == 0) m_nFirst = m_nLast = 1;
}

void CRegisterLevels::Add(uint64_t nConfiguration, const TChessboardRegisterEntry& entry) {
    const uint16_t n = std::max(entry.MovesMate, entry.MovesNoMate);
    if (n == 0) return;
    if (n >= m_levels.size()) m_levels.resize(n + 1);
    TLevel& level = m_levels[n];
    if (nConfiguration != level.nGroup) {
        AppendMarker(level.bytes, nConfiguration);
        level.nGroup = nConfiguration;
    }
    AppendRecord(level.bytes, entry);
    m_nFirst = std::min(m_nFirst, n);
    m_nLast = std::max(m_nLast, n);
}

const std::vector<uint8_t>& CRegisterLevels::Records(uint16_t n) const {
    static const std::vector<uint8_t> kNone;
    return n < m_levels.size() ? m_levels[n].bytes : kNone;
}

void CRegisterLevels::Release(uint16_t n) {
    if (n < m_levels.size()) std::vector<uint8_t>().swap(m_levels[n].bytes);
}

}  // namespace moremate
