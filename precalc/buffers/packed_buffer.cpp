// The shapes the factories choose: 8,192-byte blocks that keep room for updates, and 16,384-byte
// blocks packed tightly for reading (or, when updates are wanted, with room as well).
#include "packed_buffer.h"

#include <string>

#include "core/chess_exception.h"
#include "packed_image.h"
#include "random_access_buffer.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

constexpr uint32_t kSmallBlock = 8192;
constexpr uint32_t kLargeBlock = 16384;

template <TPacking kPacking, typename TElement>
struct CShapes {
    using Updatable = CRandomAccessBlockBuffer<kPacking, TElement, kSmallBlock, 0, 8, 1, 0>;
    using LargeUpdatable = CRandomAccessBlockBuffer<kPacking, TElement, kLargeBlock, 0, 8, 1, 0>;
    using ReadOnly = CRandomAccessBlockBuffer<kPacking, TElement, kLargeBlock, 0, 1, 0, 0>;

    static std::unique_ptr<CRandomAccessPackedBufferBase> Pack(const std::vector<uint8_t>& elements,
                                                               bool bUpdatable) {
        if (bUpdatable) return Updatable::Pack(elements);
        return ReadOnly::Pack(elements);
    }

    static std::unique_ptr<CRandomAccessPackedBufferBase> Open(std::vector<uint8_t> image, bool bForUpdates) {
        const uint32_t nBlockSize = BlockSizeOf(image);
        if (nBlockSize == kSmallBlock) return Updatable::Open(std::move(image));
        if (nBlockSize == kLargeBlock && bForUpdates) return LargeUpdatable::Open(std::move(image));
        if (nBlockSize == kLargeBlock) return ReadOnly::Open(std::move(image));
        throw ChessException("Damaged packed data: block size " + std::to_string(nBlockSize) +
                             " is neither 8192 nor 16384");
    }
};

void CheckElementSize(unsigned elementSize) {
    if (elementSize != 1 && elementSize != 2)
        throw ChessException("Packed buffers hold elements of 1 or 2 bytes, not " +
                             std::to_string(elementSize));
}

template <typename TElement>
std::unique_ptr<CRandomAccessPackedBufferBase> PackAs(TPacking packing, const std::vector<uint8_t>& elements,
                                                      bool bUpdatable) {
    if (packing == TPacking::Lz4) return CShapes<TPacking::Lz4, TElement>::Pack(elements, bUpdatable);
    return CShapes<TPacking::Lzw, TElement>::Pack(elements, bUpdatable);
}

template <typename TElement>
std::unique_ptr<CRandomAccessPackedBufferBase> OpenAs(TPacking packing, std::vector<uint8_t> image,
                                                      bool bForUpdates) {
    if (packing == TPacking::Lz4)
        return CShapes<TPacking::Lz4, TElement>::Open(std::move(image), bForUpdates);
    return CShapes<TPacking::Lzw, TElement>::Open(std::move(image), bForUpdates);
}

}  // namespace

std::unique_ptr<CRandomAccessPackedBufferBase> PackBuffer(TPacking packing,
                                                          const std::vector<uint8_t>& elements,
                                                          unsigned elementSize, bool bUpdatable) {
    CheckElementSize(elementSize);
    if (elementSize == 1) return PackAs<uint8_t>(packing, elements, bUpdatable);
    return PackAs<uint16_t>(packing, elements, bUpdatable);
}

std::unique_ptr<CRandomAccessPackedBufferBase> OpenPackedBuffer(TPacking packing, std::vector<uint8_t> image,
                                                                unsigned elementSize) {
    return OpenPackedBuffer(packing, std::move(image), elementSize, false);
}

std::unique_ptr<CRandomAccessPackedBufferBase> OpenPackedBuffer(TPacking packing, std::vector<uint8_t> image,
                                                                unsigned elementSize, bool bForUpdates) {
    CheckElementSize(elementSize);
    if (elementSize == 1) return OpenAs<uint8_t>(packing, std::move(image), bForUpdates);
    return OpenAs<uint16_t>(packing, std::move(image), bForUpdates);
}

}  // namespace moremate::RandomAccessLZWBuffer
