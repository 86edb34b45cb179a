// Elements read from the data file at each look-up. The file position is shared, so look-ups of
// all registers in disk access take one process-wide lock.
#include <cstdio>
#include <mutex>

#include "core/chess_exception.h"
#include "global_storage.h"

namespace moremate {
namespace {

std::mutex& DiskLookupLock() {
    static std::mutex s_lock;
    return s_lock;
}

class CDiskStorage : public CGlobalStorage {
  public:
    CDiskStorage(const std::filesystem::path& file, uint64_t dataOffset, uint64_t nElements,
                 unsigned elementSize)
        : m_pFile(std::fopen(file.c_str(), "rb")),
          m_nDataOffset(dataOffset),
          m_nElements(nElements),
          m_nElementSize(elementSize) {
        if (!m_pFile) throw ChessException("Cannot open file " + file.string());
    }
    ~CDiskStorage() override { std::fclose(m_pFile); }
    CDiskStorage(const CDiskStorage&) = delete;
    CDiskStorage& operator=(const CDiskStorage&) = delete;

    TStorageForm Form() const override { return TStorageForm::kDiskAccess; }
    TStorageKind Kind() const override { return TStorageKind::kPlain; }
    uint64_t ElementCount() const override { return m_nElements; }
    unsigned ElementSize() const override { return m_nElementSize; }
    uint16_t Element(uint64_t nIndex) const override {
        uint8_t bytes[2] = {};
        std::lock_guard lock(DiskLookupLock());
        const auto at = static_cast<off_t>(m_nDataOffset + nIndex * m_nElementSize);
        if (fseeko(m_pFile, at, SEEK_SET) != 0 || std::fread(bytes, m_nElementSize, 1, m_pFile) != 1)
            return kUnknownMate;
        return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
    }
    void Set(uint64_t, uint16_t) override {
        throw ChessException("Precalculated data read from disk cannot be changed");
    }
    size_t MemoryBytes() const override { return 0; }
    std::vector<uint8_t> Payload() const override {
        std::vector<uint8_t> bytes(m_nElements * m_nElementSize);
        std::lock_guard lock(DiskLookupLock());
        if (fseeko(m_pFile, static_cast<off_t>(m_nDataOffset), SEEK_SET) != 0 ||
            std::fread(bytes.data(), 1, bytes.size(), m_pFile) != bytes.size())
            throw ChessException("Cannot read precalculated data from disk");
        return bytes;
    }

  private:
    std::FILE* m_pFile;
    uint64_t m_nDataOffset;
    uint64_t m_nElements;
    unsigned m_nElementSize;
};

}  // namespace

std::unique_ptr<CGlobalStorage> OpenDiskStorage(const std::filesystem::path& file, uint64_t dataOffset,
                                                uint64_t nElements, unsigned elementSize) {
    return std::make_unique<CDiskStorage>(file, dataOffset, nElements, elementSize);
}

}  // namespace moremate
