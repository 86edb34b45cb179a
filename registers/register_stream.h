// The byte stream a register is saved into: straight into a file through a buffer, or kept in
// memory whole for packing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace moremate {

// An open file, closed when the handle goes.
using CFileHandle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

class CRegisterStream {
  public:
    // Writes through to `pFile`, named `sFileName` in messages; without a file the bytes stay in
    // memory.
    explicit CRegisterStream(std::FILE* pFile = nullptr, std::string sFileName = {})
        : m_pFile(pFile), m_sFileName(std::move(sFileName)) {}

    // Throws ChessException with `sError`, the file's name and the system's reason when the file
    // cannot be written.
    void Write(const void* pData, size_t size, const char* sError);
    void Flush(const char* sError);

    // Entry records among the bytes written, counted by the writer.
    void CountRecords(uint64_t n) { m_nRecords += n; }
    uint64_t Records() const { return m_nRecords; }
    // Bytes that reached the file and their CRC-32.
    uint64_t FileBytes() const { return m_nFileBytes; }
    uint32_t FileCrc() const { return m_nFileCrc; }

    std::vector<uint8_t>& Bytes() { return m_bytes; }

  private:
    void WriteToFile(const uint8_t* p, size_t size, const char* sError);

    std::FILE* m_pFile;
    std::string m_sFileName;
    std::vector<uint8_t> m_bytes;
    uint64_t m_nRecords = 0;
    uint64_t m_nFileBytes = 0;
    uint32_t m_nFileCrc = 0;
};

// "<message>: <file> (<the system's reason from errno>)".
std::string FileErrorText(const char* sMessage, const std::string& sFileName);

}  // namespace moremate
