// A plain map from positions to results, standing in for the temporary register in tests.
#pragma once

#include <array>
#include <cstring>
#include <map>
#include <mutex>

#include "engine/search/position_store.h"

namespace moremate::test {

class CMapStore : public CPositionStore {
  public:
    uint8_t LookupSquares(const TChessboardRegisterItem& squares, uint32_t, int halfMoves) override {
        std::lock_guard lock(m_mutex);
        const auto it = m_entries.find(Key(squares.squares, halfMoves & 1));
        if (it == m_entries.end()) return kUnknownResult;
        const Entry& e = it->second;
        if (e.mate && e.mate <= halfMoves) return kMate;
        if (e.noMate >= halfMoves) return kNoMate;
        if (e.doubtful >= halfMoves) return kDoubtful;
        return kUnknownResult;
    }
    void Store(const TChessboard& position, int halfMoves, uint8_t result) override {
        std::lock_guard lock(m_mutex);
        Entry& e = m_entries[Key(position.squares, halfMoves & 1)];
        if (result == kMate && (!e.mate || halfMoves < e.mate)) e.mate = halfMoves;
        if (result == kNoMate && halfMoves > e.noMate) e.noMate = halfMoves;
        if (result == kDoubtful && halfMoves > e.doubtful) e.doubtful = halfMoves;
        ++m_nStores;
    }
    size_t Size() const { return m_entries.size(); }
    size_t Stores() const { return m_nStores; }

  private:
    struct Entry {
        int mate = 0, noMate = 0, doubtful = 0;
    };
    using TKey = std::array<uint8_t, 65>;
    static TKey Key(const uint8_t* squares, int parity) {
        TKey k;
        std::memcpy(k.data(), squares, 64);
        k[64] = static_cast<uint8_t>(parity);
        return k;
    }
    std::mutex m_mutex;
    std::map<TKey, Entry> m_entries;
    size_t m_nStores = 0;
};

}  // namespace moremate::test
