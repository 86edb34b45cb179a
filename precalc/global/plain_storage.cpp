// One element per index, as the generator fills it.
#include "global_storage.h"

namespace moremate {
namespace {

class CPlainStorage : public CGlobalStorage {
  public:
    CPlainStorage(std::vector<uint8_t> elements, unsigned elementSize)
        : m_vBytes(std::move(elements)), m_nElementSize(elementSize) {}
    TStorageForm Form() const override { return TStorageForm::kPlain; }
    TStorageKind Kind() const override { return TStorageKind::kPlain; }
    uint64_t ElementCount() const override { return m_vBytes.size() / m_nElementSize; }
    unsigned ElementSize() const override { return m_nElementSize; }
    uint16_t Element(uint64_t nIndex) const override {
        if (m_nElementSize == 1) return m_vBytes[nIndex];
        return static_cast<uint16_t>(m_vBytes[2 * nIndex] | m_vBytes[2 * nIndex + 1] << 8);
    }
    void Set(uint64_t nIndex, uint16_t nValue) override {
        if (m_nElementSize == 1) {
            m_vBytes[nIndex] = static_cast<uint8_t>(nValue);
            return;
        }
        m_vBytes[2 * nIndex] = static_cast<uint8_t>(nValue);
        m_vBytes[2 * nIndex + 1] = static_cast<uint8_t>(nValue >> 8);
    }
    size_t MemoryBytes() const override { return m_vBytes.size(); }
    std::vector<uint8_t> Payload() const override { return m_vBytes; }

  private:
    std::vector<uint8_t> m_vBytes;
    unsigned m_nElementSize;
};

}  // namespace

std::unique_ptr<CGlobalStorage> MakePlainStorage(std::vector<uint8_t> elements, unsigned elementSize) {
    return std::make_unique<CPlainStorage>(std::move(elements), elementSize);
}

}  // namespace moremate
