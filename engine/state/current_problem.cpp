#include "current_problem.h"

#include <algorithm>
#include <atomic>

namespace moremate {

namespace {

// One text with its number; the characters are relaxed atomics so that a concurrent reader is
// well defined.
class CCurrentText {
  public:
    void Set(std::string_view text, int number) {
        const size_t length = std::min(text.size(), kCurrentTextCapacity - 1);
        m_nLength.store(0);
        for (size_t i = 0; i < length; ++i) m_ach[i].store(text[i], std::memory_order_relaxed);
        m_nNumber.store(number);
        m_nLength.store(length);
    }

    size_t Copy(char* out, size_t size) const {
        if (size == 0) return 0;
        size_t n = 0;
        const size_t length = std::min(m_nLength.load(), kCurrentTextCapacity - 1);
        for (size_t i = 0; i < length && n + 1 < size; ++i)
            out[n++] = m_ach[i].load(std::memory_order_relaxed);
        if (n + 1 < size) out[n++] = ',';
        n += WriteNumber(m_nNumber.load(), out + n, size - n);
        out[n] = '\0';
        return n;
    }

  private:
    // Decimal digits of `value` into `out`, leaving room for the terminating zero.
    static size_t WriteNumber(int value, char* out, size_t size) {
        char digits[16];
        size_t count = 0;
        unsigned magnitude = value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
        do {
            digits[count++] = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (value < 0) digits[count++] = '-';
        size_t n = 0;
        while (count > 0 && n + 1 < size) out[n++] = digits[--count];
        return n;
    }

    std::atomic<char> m_ach[kCurrentTextCapacity] = {};
    std::atomic<size_t> m_nLength{0};
    std::atomic<int> m_nNumber{0};
};

CCurrentText g_problem, g_chessboard;

}  // namespace

void SetCurrentProblem(std::string_view name, int number) {
    g_problem.Set(name, number);
}

void SetCurrentChessboard(std::string_view fen, int halfMoves) {
    g_chessboard.Set(fen, halfMoves);
}

void ClearCurrentProblem() {
    g_problem.Set({}, 0);
    g_chessboard.Set({}, 0);
}

size_t CopyCurrentProblem(char* out, size_t size) {
    return g_problem.Copy(out, size);
}

size_t CopyCurrentChessboard(char* out, size_t size) {
    return g_chessboard.Copy(out, size);
}

CCurrentProblemScope::CCurrentProblemScope(std::string_view name, int number, std::string_view fen,
                                           int halfMoves) {
    SetCurrentProblem(name, number);
    SetCurrentChessboard(fen, halfMoves);
}

CCurrentProblemScope::~CCurrentProblemScope() {
    ClearCurrentProblem();
}

}  // namespace moremate
