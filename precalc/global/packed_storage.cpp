// The random-access buffers: LZW or LZ4 blocks unpacked one at a time.
#include "core/chess_exception.h"
#include "global_storage.h"
#include "precalc/buffers/packed_buffer.h"

namespace moremate {
namespace {

using RandomAccessLZWBuffer::CRandomAccessPackedBufferBase;
using RandomAccessLZWBuffer::TPacking;

inline constexpr const char* kUpdateFailed =
    "Error (no mem.) in call to CRandomAccessPackedBufferBase::Update in TGlobalRegister::SetMateByIndex()";

TPacking PackingOf(TStorageKind kind) {
    return kind == TStorageKind::kPackedLzw ? TPacking::Lzw : TPacking::Lz4;
}

class CPackedStorage : public CGlobalStorage {
  public:
    CPackedStorage(TStorageKind kind, std::unique_ptr<CRandomAccessPackedBufferBase> buffer)
        : m_kind(kind), m_pBuffer(std::move(buffer)) {}
    TStorageForm Form() const override { return TStorageForm::kRandomAccess; }
    TStorageKind Kind() const override { return m_kind; }
    uint64_t ElementCount() const override { return m_pBuffer->ElementCount(); }
    unsigned ElementSize() const override { return m_pBuffer->ElementSize(); }
    uint16_t Element(uint64_t nIndex) const override { return m_pBuffer->Element(nIndex); }
    uint16_t MateCode(uint64_t nIndex) const override {
        const uint16_t value = Element(nIndex);
        if (ElementSize() == 1 && value == 255) return kUnknownMate;
        return value < 1 ? value : static_cast<uint16_t>(2 * value - 1);
    }
    void Set(uint64_t nIndex, uint16_t nValue) override {
        if (!m_pBuffer->Update(nIndex, nValue)) throw ChessException(kUpdateFailed);
    }
    size_t MemoryBytes() const override { return m_pBuffer->MemoryBytes(); }
    std::vector<uint8_t> Payload() const override { return m_pBuffer->Image(); }

  private:
    TStorageKind m_kind;
    std::unique_ptr<CRandomAccessPackedBufferBase> m_pBuffer;
};

}  // namespace

std::unique_ptr<CGlobalStorage> MakePackedStorage(TStorageKind kind, const std::vector<uint8_t>& elements,
                                                  unsigned elementSize) {
    return std::make_unique<CPackedStorage>(
        kind, RandomAccessLZWBuffer::PackBuffer(PackingOf(kind), elements, elementSize, false));
}

std::unique_ptr<CGlobalStorage> OpenPackedStorage(TStorageKind kind, std::vector<uint8_t> image,
                                                  unsigned elementSize) {
    return std::make_unique<CPackedStorage>(
        kind, RandomAccessLZWBuffer::OpenPackedBuffer(PackingOf(kind), std::move(image), elementSize));
}

}  // namespace moremate
