#include "mapped_file.h"

#include <sys/mman.h>

#include "core/chess_exception.h"

namespace moremate {

CMappedFile::CMappedFile(std::FILE* pFile, uint64_t nSize, const char* sError) : m_nSize(nSize) {
    if (nSize == 0) return;  // nothing to map: the system refuses a mapping of no bytes
    void* p = mmap(nullptr, nSize, PROT_READ, MAP_PRIVATE, fileno(pFile), 0);
    if (p == MAP_FAILED) throw ChessException(sError);
    madvise(p, nSize, MADV_SEQUENTIAL);
    m_pBytes = static_cast<const uint8_t*>(p);
}

CMappedFile::~CMappedFile() {
    if (m_pBytes) munmap(const_cast<uint8_t*>(m_pBytes), m_nSize);
}

}  // namespace moremate
