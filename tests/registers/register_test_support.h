// Keys, positions, filled registers and a log recorder shared by the register tests.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/types.h"
#include "registers/aggregated_register.h"
#include "registers/register_entry.h"
#include "registers/register_services.h"

namespace moremate::testing {

// A key with the given (square, piece) pairs and every other square empty.
inline TChessboardRegisterItem KeyOf(std::initializer_list<std::pair<int, Piece>> pieces) {
    TChessboardRegisterItem item;
    for (const auto& [square, piece] : pieces) item.squares[square] = piece;
    return item;
}

// Distinct keys, all different in their first bytes, spread over the buckets.
inline TChessboardRegisterItem NumberedKey(uint32_t i) {
    TChessboardRegisterItem item;
    item.squares[4] = MakePiece(kWhite, kKing);
    item.squares[60] = MakePiece(kBlack, kKing);
    for (int byte = 0; byte < 4; ++byte) item.squares[10 + byte] = static_cast<uint8_t>(i >> (8 * byte));
    return item;
}

// Up to 64 distinct keys that all hash to 252: byte 0 weighs 1 and byte 1 weighs 4.
inline TChessboardRegisterItem EqualHashKey(uint8_t i) {
    TChessboardRegisterItem item;
    item.squares[1] = i;
    item.squares[0] = static_cast<uint8_t>(252 - 4 * i);
    return item;
}

// Records the register's log lines; safe to use from several threads.
class CLogRecorder {
  public:
    CRegisterLog Sink() {
        return [this](const std::string& line) {
            std::lock_guard lock(m_mutex);
            m_lines.push_back(line);
        };
    }
    std::vector<std::string> Lines() const {
        std::lock_guard lock(m_mutex);
        return m_lines;
    }
    void Clear() {
        std::lock_guard lock(m_mutex);
        m_lines.clear();
    }
    int Count(const std::string& line) const {
        int n = 0;
        for (const std::string& l : Lines()) n += l == line;
        return n;
    }

  private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

// Distinct legal positions: the two kings apart from each other and a white rook.
inline std::vector<TChessboardRegisterItem> LegalKeys(size_t nCount) {
    std::vector<TChessboardRegisterItem> keys;
    for (int whiteKing = 0; whiteKing < 64; ++whiteKing) {
        for (int blackKing = 0; blackKing < 64; ++blackKing) {
            const int nFileGap = std::abs(whiteKing % 8 - blackKing % 8);
            const int nRankGap = std::abs(whiteKing / 8 - blackKing / 8);
            if (std::max(nFileGap, nRankGap) < 2) continue;
            for (int rook = 0; rook < 64; ++rook) {
                if (rook == whiteKing || rook == blackKing) continue;
                if (keys.size() == nCount) return keys;
                TChessboardRegisterItem key;
                key.squares[whiteKing] = MakePiece(kWhite, kKing);
                key.squares[blackKing] = MakePiece(kBlack, kKing);
                key.squares[rook] = MakePiece(kWhite, kRook);
                keys.push_back(key);
            }
        }
    }
    return keys;
}

// `nCount` mate / no-mate entries over levels 1 to 15, and every fifth key also in two
// doubtfulness configurations.
inline void FillRegister(TAggregatedTemporaryChessboardRegister& reg, size_t nCount) {
    const std::vector<TChessboardRegisterItem> keys = LegalKeys(nCount);
    for (size_t i = 0; i < keys.size(); ++i) {
        const uint16_t n = static_cast<uint16_t>(1 + i % 15);
        reg.Insert(n, keys[i], i % 3 != 0);
        if (i % 5 == 0) {
            reg.InsertDoubtful(ConfigurationKey(6, 1), n, keys[i], true);
            reg.InsertDoubtful(ConfigurationKey(0x40, 3), n + 2, keys[i], false);
        }
    }
}

using TContent = std::tuple<uint64_t, std::vector<uint8_t>, uint16_t, uint16_t>;

// Bucket by bucket, each bucket's entries in their stored order.
inline std::vector<TContent> ContentsInOrder(const TAggregatedTemporaryChessboardRegister& reg) {
    std::vector<TContent> contents;
    reg.ForEachConfigurationEntry([&](uint64_t nConfiguration, const TChessboardRegisterEntry& entry) {
        contents.emplace_back(nConfiguration, std::vector<uint8_t>(entry.key.squares, entry.key.squares + 64),
                              entry.MovesMate, entry.MovesNoMate);
    });
    return contents;
}

inline std::vector<TContent> Contents(const TAggregatedTemporaryChessboardRegister& reg) {
    std::vector<TContent> contents = ContentsInOrder(reg);
    std::sort(contents.begin(), contents.end());
    return contents;
}

// Pseudo-random bytes (a fixed linear congruential sequence): incompressible.
inline std::vector<uint8_t> NoiseBytes(size_t size, uint32_t nSeed) {
    std::vector<uint8_t> bytes(size);
    uint64_t state = nSeed * 0x9E3779B97F4A7C15ull + 1;
    for (uint8_t& byte : bytes) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        byte = static_cast<uint8_t>(state >> 56);
    }
    return bytes;
}

}  // namespace moremate::testing
