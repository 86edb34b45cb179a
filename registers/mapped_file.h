// A file mapped whole for reading: its bytes are read where they lie in the system's file cache,
// not copied into a buffer first, and the system reads ahead of a pass from front to back. A file
// cut short by another program while it is mapped faults when the lost bytes are read: register
// files are written under another name and renamed, never cut in place.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

namespace moremate {

class CMappedFile {
  public:
    // The first `nSize` bytes of the open file; throws ChessException(sError) when the system
    // refuses the mapping.
    CMappedFile(std::FILE* pFile, uint64_t nSize, const char* sError);
    ~CMappedFile();
    CMappedFile(const CMappedFile&) = delete;
    CMappedFile& operator=(const CMappedFile&) = delete;

    std::span<const uint8_t> Bytes() const { return {m_pBytes, m_nSize}; }

  private:
    const uint8_t* m_pBytes = nullptr;
    size_t m_nSize = 0;
};

}  // namespace moremate
