// Keys, positions and a log recorder shared by the register tests.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "core/types.h"
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

}  // namespace moremate::testing
