// Run-length blocks of 2,048 indexes. The image is little-endian u32 words: the element count,
// the block count B, B block offsets relative to the data start, then the blocks. A block byte
// below 128, or 255, is a literal covering one index; 128 to 254 repeats the last literal for
// b - 127 further indexes.
#include <cstring>

#include "core/chess_exception.h"
#include "global_storage.h"

namespace moremate {
namespace {

constexpr uint64_t kBlockIndexes = 2048;
constexpr int kLongestRepeat = 254 - 127;

uint32_t Word(const std::vector<uint8_t>& image, size_t word) {
    uint32_t value;
    std::memcpy(&value, &image[4 * word], 4);
    return value;
}

void PutWord(std::vector<uint8_t>& image, size_t word, uint32_t value) {
    std::memcpy(&image[4 * word], &value, 4);
}

bool IsLiteral(uint8_t b) {
    return b < 128 || b == 255;
}

class CRunLengthStorage : public CGlobalStorage {
  public:
    explicit CRunLengthStorage(std::vector<uint8_t> image) : m_vImage(std::move(image)) { CheckImage(); }
    TStorageForm Form() const override { return TStorageForm::kRunLength; }
    TStorageKind Kind() const override { return TStorageKind::kRunLength; }
    uint64_t ElementCount() const override { return Word(m_vImage, 0); }
    uint16_t Element(uint64_t nIndex) const override {
        const uint64_t block = nIndex / kBlockIndexes;
        const uint8_t* p = &m_vImage[DataStart() + Word(m_vImage, 2 + block)];
        uint64_t left = nIndex % kBlockIndexes;
        uint8_t value = *p++;
        while (left > 0) {
            const uint8_t b = *p++;
            if (IsLiteral(b)) {
                value = b;
                --left;
            } else {
                left -= std::min<uint64_t>(left, b - 127u);
            }
        }
        return value;
    }
    uint16_t MateCode(uint64_t nIndex) const override {
        const uint16_t value = Element(nIndex);
        return value == 0 ? 0 : static_cast<uint16_t>(2 * value - 1);
    }
    void Set(uint64_t, uint16_t) override {
        throw ChessException("Run-length blocks of precalculated data cannot be changed");
    }
    size_t MemoryBytes() const override { return m_vImage.size(); }
    std::vector<uint8_t> Payload() const override { return m_vImage; }

  private:
    size_t DataStart() const { return 4 * (2 + static_cast<size_t>(Word(m_vImage, 1))); }
    // Every block starts with a literal inside the image; the blocks cover the element count.
    void CheckImage() const {
        const auto fail = []() { throw ChessException("Run-length blocks out of order"); };
        if (m_vImage.size() < 8 || m_vImage.size() < DataStart()) fail();
        const uint64_t blocks = Word(m_vImage, 1);
        if (blocks != (ElementCount() + kBlockIndexes - 1) / kBlockIndexes) fail();
        for (uint64_t b = 0; b < blocks; ++b) {
            const size_t at = DataStart() + Word(m_vImage, 2 + b);
            if (at >= m_vImage.size() || !IsLiteral(m_vImage[at])) fail();
            const size_t end = b + 1 < blocks ? DataStart() + Word(m_vImage, 3 + b) : m_vImage.size();
            const uint64_t want = std::min(kBlockIndexes, ElementCount() - b * kBlockIndexes);
            if (end > m_vImage.size() || end < at || Covered(at, end) < want) fail();
        }
    }
    uint64_t Covered(size_t from, size_t to) const {
        uint64_t n = 0;
        for (size_t i = from; i < to; ++i) n += IsLiteral(m_vImage[i]) ? 1 : m_vImage[i] - 127u;
        return n;
    }

    std::vector<uint8_t> m_vImage;
};

void AppendBlock(const uint8_t* values, uint64_t n, std::vector<uint8_t>& image) {
    uint64_t i = 0;
    while (i < n) {
        const uint8_t value = values[i];
        if (!IsLiteral(value))
            throw ChessException("Value " + std::to_string(value) + " does not fit run-length blocks");
        image.push_back(value);
        ++i;
        uint64_t run = 0;
        while (i + run < n && values[i + run] == value) ++run;
        i += run;
        for (; run > 0; run -= std::min<uint64_t>(run, kLongestRepeat))
            image.push_back(static_cast<uint8_t>(127 + std::min<uint64_t>(run, kLongestRepeat)));
    }
}

}  // namespace

std::unique_ptr<CGlobalStorage> MakeRunLengthStorage(const std::vector<uint8_t>& elements) {
    const uint64_t blocks = (elements.size() + kBlockIndexes - 1) / kBlockIndexes;
    std::vector<uint8_t> image(4 * (2 + blocks), 0);
    PutWord(image, 0, static_cast<uint32_t>(elements.size()));
    PutWord(image, 1, static_cast<uint32_t>(blocks));
    const size_t dataStart = image.size();
    for (uint64_t b = 0; b < blocks; ++b) {
        PutWord(image, 2 + b, static_cast<uint32_t>(image.size() - dataStart));
        const uint64_t first = b * kBlockIndexes;
        AppendBlock(&elements[first], std::min(kBlockIndexes, elements.size() - first), image);
    }
    return std::make_unique<CRunLengthStorage>(std::move(image));
}

std::unique_ptr<CGlobalStorage> OpenRunLengthStorage(std::vector<uint8_t> image) {
    return std::make_unique<CRunLengthStorage>(std::move(image));
}

}  // namespace moremate
