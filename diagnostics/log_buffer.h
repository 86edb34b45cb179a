// A text buffer of fixed size for writing from a signal handler: no allocation, no locale, no
// stdio. Full buffers are written out with write(2) to the file descriptor given at the start.
#pragma once

#include <cstddef>
#include <cstdint>

namespace moremate::diagnostics {

class CLogBuffer {
  public:
    explicit CLogBuffer(int fd) : m_nFd(fd) {}
    ~CLogBuffer() { Flush(); }
    CLogBuffer(const CLogBuffer&) = delete;
    CLogBuffer& operator=(const CLogBuffer&) = delete;

    CLogBuffer& Text(const char* text);
    CLogBuffer& Text(const char* text, size_t length);
    CLogBuffer& Char(char c);
    // Upper-case hexadecimal digits without prefix, at least `minDigits` of them.
    CLogBuffer& Hex(uint64_t value, int minDigits = 1);
    CLogBuffer& Decimal(long long value);
    CLogBuffer& Unsigned(unsigned long long value);
    CLogBuffer& Line(const char* text) { return Text(text).Char('\n'); }
    void Flush();

  private:
    static constexpr size_t kCapacity = 4096;
    int m_nFd;
    size_t m_nUsed = 0;
    char m_ach[kCapacity];
};

}  // namespace moremate::diagnostics
