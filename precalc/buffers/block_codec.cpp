#include "block_codec.h"

#include <algorithm>
#include <array>

#include "lz4_block.h"
#include "lzw_codec.h"

namespace moremate::RandomAccessLZWBuffer {
namespace {

class CLzwBlockCodec final : public CBlockCodec {
  public:
    explicit CLzwBlockCodec(uint8_t nFill) : m_preset(nFill) {}
    size_t Pack(const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom) const override {
        return LzwPack(m_preset, pSource, nSize, pOut, nRoom);
    }
    bool Unpack(const uint8_t* pPacked, size_t nPacked, uint8_t* pOut, size_t nSize) const override {
        return LzwUnpack(m_preset, pPacked, nPacked, pOut, nSize);
    }

  private:
    const TLzwPreset m_preset;
};

class CLz4BlockCodec final : public CBlockCodec {
  public:
    size_t Pack(const uint8_t* pSource, size_t nSize, uint8_t* pOut, size_t nRoom) const override {
        return Lz4Pack(pSource, nSize, pOut, nRoom);
    }
    bool Unpack(const uint8_t* pPacked, size_t nPacked, uint8_t* pOut, size_t nSize) const override {
        return Lz4Unpack(pPacked, nPacked, pOut, nSize);
    }
};

}  // namespace

std::unique_ptr<CBlockCodec> MakeBlockCodec(TPacking packing, uint8_t nFill) {
    if (packing == TPacking::Lz4) return std::make_unique<CLz4BlockCodec>();
    return std::make_unique<CLzwBlockCodec>(nFill);
}

std::string PackingName(TPacking packing) {
    return packing == TPacking::Lz4 ? "LZ4" : "LZW";
}

uint8_t MostFrequentByte(const std::vector<uint8_t>& bytes) {
    std::array<uint64_t, 256> counts{};
    for (const uint8_t b : bytes) ++counts[b];
    return static_cast<uint8_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
}

}  // namespace moremate::RandomAccessLZWBuffer
