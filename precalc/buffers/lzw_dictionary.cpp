#include "lzw_dictionary.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace moremate::RandomAccessLZWBuffer {
namespace {

constexpr int kFirstPairedByte = 1;
constexpr int kLastPairedByte = 20;
constexpr size_t kLongestPresetRun = 128;

}  // namespace

CLzwEncoderDictionary CLzwEncoderDictionary::Preset(uint8_t nFill) {
    CLzwEncoderDictionary dictionary;
    for (int b = 0; b < 256; ++b) {
        const uint8_t single[] = {static_cast<uint8_t>(b)};
        dictionary.AddNew(single, 1);
        const uint8_t pair[] = {static_cast<uint8_t>(b), nFill};
        if (b >= kFirstPairedByte && b <= kLastPairedByte) dictionary.AddNew(pair, 2);
    }
    const std::vector<uint8_t> run(kLongestPresetRun, nFill);
    for (size_t n = 2; n <= kLongestPresetRun; ++n) dictionary.AddNew(run.data(), n);
    return dictionary;
}

void CLzwEncoderDictionary::Reset(const CLzwEncoderDictionary& preset) {
    m_growth = preset.m_growth;
    const size_t nCount = m_growth.nCount;
    std::copy_n(preset.m_sorted.begin(), nCount, m_sorted.begin());
    std::copy_n(preset.m_offsets.begin(), nCount, m_offsets.begin());
    std::copy_n(preset.m_lengths.begin(), nCount, m_lengths.begin());
    std::copy_n(preset.m_store.begin(), m_growth.nStoreUsed, m_store.begin());
}

CLzwEncoderDictionary::TRange CLzwEncoderDictionary::Narrow(TRange range, size_t k, uint8_t nByte) const {
    // Within the range the byte at k never decreases; an entry of k bytes (the range's common
    // prefix itself) counts as lower than any byte.
    const auto byteAt = [this, k](uint16_t nCode) {
        return m_lengths[nCode] > k ? int{m_store[m_offsets[nCode] + k]} : -1;
    };
    const uint16_t* const pFirst = m_sorted.data() + range.nFirst;
    const uint16_t* const pEnd = m_sorted.data() + range.nEnd;
    const uint16_t* const pLow =
        std::partition_point(pFirst, pEnd, [&](uint16_t nCode) { return byteAt(nCode) < nByte; });
    const uint16_t* const pHigh =
        std::partition_point(pLow, pEnd, [&](uint16_t nCode) { return byteAt(nCode) == nByte; });
    return {static_cast<uint16_t>(pLow - m_sorted.data()), static_cast<uint16_t>(pHigh - m_sorted.data())};
}

void CLzwEncoderDictionary::Add(uint16_t nSorted, const uint8_t* pBytes, size_t nLength) {
    if (!m_growth.Admits(nLength)) return;
    const uint16_t nCode = m_growth.nCount;
    std::memcpy(m_store.data() + m_growth.nStoreUsed, pBytes, nLength);
    m_offsets[nCode] = m_growth.nStoreUsed;
    m_lengths[nCode] = static_cast<uint8_t>(nLength);
    std::copy_backward(m_sorted.begin() + nSorted, m_sorted.begin() + nCode, m_sorted.begin() + nCode + 1);
    m_sorted[nSorted] = nCode;
    m_growth.Grow(nLength);
}

void CLzwEncoderDictionary::AddNew(const uint8_t* pBytes, size_t nLength) {
    TRange range = All();
    for (size_t k = 0; k < nLength; ++k) range = Narrow(range, k, pBytes[k]);
    if (!Holds(range, nLength)) Add(range.nFirst, pBytes, nLength);
}

TLzwPreset::TLzwPreset(uint8_t nFill) : encoder(CLzwEncoderDictionary::Preset(nFill)), decoder() {
    for (uint16_t nCode = 0; nCode < encoder.Growth().nCount; ++nCode)
        decoder[nCode] = {encoder.Bytes(nCode), encoder.Length(nCode)};
}

}  // namespace moremate::RandomAccessLZWBuffer
