// Four elements per byte: element i in bits 2 (i mod 4) and 2 (i mod 4) + 1 of byte i / 4.
#include <algorithm>

#include "core/chess_exception.h"
#include "global_storage.h"

namespace moremate {
namespace {

class CTwoBitStorage : public CGlobalStorage {
  public:
    CTwoBitStorage(std::vector<uint8_t> bytes, uint64_t nElements)
        : m_vBytes(std::move(bytes)), m_nElements(nElements) {}
    TStorageForm Form() const override { return TStorageForm::kTwoBit; }
    TStorageKind Kind() const override { return TStorageKind::kTwoBit; }
    uint64_t ElementCount() const override { return m_nElements; }
    uint16_t Element(uint64_t nIndex) const override { return (m_vBytes[nIndex / 4] >> Shift(nIndex)) & 3; }
    uint16_t MateCode(uint64_t nIndex) const override { return Element(nIndex); }
    void Set(uint64_t nIndex, uint16_t nValue) override {
        if (nValue > 3)
            throw ChessException("Value " + std::to_string(nValue) + " does not fit the 2-bit form");
        uint8_t& byte = m_vBytes[nIndex / 4];
        byte = static_cast<uint8_t>((byte & ~(3 << Shift(nIndex))) | nValue << Shift(nIndex));
    }
    size_t MemoryBytes() const override { return m_vBytes.size(); }
    std::vector<uint8_t> Payload() const override { return m_vBytes; }

  private:
    static int Shift(uint64_t nIndex) { return static_cast<int>(2 * (nIndex % 4)); }

    std::vector<uint8_t> m_vBytes;
    uint64_t m_nElements;
};

}  // namespace

std::unique_ptr<CGlobalStorage> MakeTwoBitStorage(const std::vector<uint8_t>& elements) {
    auto storage =
        std::make_unique<CTwoBitStorage>(std::vector<uint8_t>((elements.size() + 3) / 4, 0), elements.size());
    for (uint64_t i = 0; i < elements.size(); ++i) storage->Set(i, elements[i]);
    return storage;
}

std::unique_ptr<CGlobalStorage> OpenTwoBitStorage(std::vector<uint8_t> payload, uint64_t nElements) {
    if (payload.size() != (nElements + 3) / 4) throw ChessException("2-bit data of the wrong size");
    return std::make_unique<CTwoBitStorage>(std::move(payload), nElements);
}

}  // namespace moremate
