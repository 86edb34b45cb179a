#include "log_buffer.h"

#include <unistd.h>

#include <cerrno>

namespace moremate::diagnostics {

CLogBuffer& CLogBuffer::Text(const char* text) {
    while (*text != '\0') Char(*text++);
    return *this;
}

CLogBuffer& CLogBuffer::Text(const char* text, size_t length) {
    for (size_t i = 0; i < length; ++i) Char(text[i]);
    return *this;
}

CLogBuffer& CLogBuffer::Char(char c) {
    if (m_nUsed == kCapacity) Flush();
    m_ach[m_nUsed++] = c;
    return *this;
}

CLogBuffer& CLogBuffer::Hex(uint64_t value, int minDigits) {
    char digits[16];
    int count = 0;
    do {
        digits[count++] = "0123456789ABCDEF"[value & 0xF];
        value >>= 4;
    } while (value != 0);
    for (int i = count; i < minDigits; ++i) Char('0');
    while (count > 0) Char(digits[--count]);
    return *this;
}

CLogBuffer& CLogBuffer::Unsigned(unsigned long long value) {
    char digits[20];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    while (count > 0) Char(digits[--count]);
    return *this;
}

CLogBuffer& CLogBuffer::Decimal(long long value) {
    if (value >= 0) return Unsigned(static_cast<unsigned long long>(value));
    Char('-');
    return Unsigned(0ull - static_cast<unsigned long long>(value));
}

void CLogBuffer::Flush() {
    size_t written = 0;
    while (written < m_nUsed) {
        const ssize_t n = write(m_nFd, m_ach + written, m_nUsed - written);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;  // nowhere left to report a failure to: the rest is dropped
        written += static_cast<size_t>(n);
    }
    m_nUsed = 0;
}

}  // namespace moremate::diagnostics
