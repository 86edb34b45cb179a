// The byte stream a register is saved into: straight into a file through a buffer, or kept in
// memory whole for packing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace moremate {

// An open file, closed when the handle goes.
using CFileHandle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

class CRegisterStream {
  public:
    // Writes through to `pFile`; without a file the bytes stay in memory.
    explicit CRegisterStream(std::FILE* pFile = nullptr) : m_pFile(pFile) {}

    // Throws ChessException with `sError` when the file cannot be written.
    void Write(const void* pData, size_t size, const char* sError);
    void Flush(const char* sError);

    std::vector<uint8_t>& Bytes() { return m_bytes; }

  private:
    std::FILE* m_pFile;
    std::vector<uint8_t> m_bytes;
};

}  // namespace moremate
