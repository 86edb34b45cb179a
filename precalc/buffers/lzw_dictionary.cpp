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
    CLzwEncoderDictionary dictionary{};  // zeroed: the decoder copies whole chunks past its strings
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

CLzwEncoderDictionary::TMatch CLzwEncoderDictionary::LongestMatch(const uint8_t* pBytes,
                                                                  size_t nLength) const {
    // No entry is longer than kLzwMaxLength: one byte more decides where a longer string goes.
    const size_t n = std::min(nLength, kLzwMaxLength + 1);
    const uint16_t* const pBegin = m_sorted.data();
    const uint16_t* const pEnd = pBegin + m_growth.nCount;
    const uint16_t* const pAbove =
        std::partition_point(pBegin, pEnd, [&](uint16_t nCode) { return Compare(nCode, pBytes, n) <= 0; });
    // The longest entry starting the string starts one of the string's neighbours in the order:
    // the entries between it and the string all begin with it.
    size_t nMatch = 0;
    if (pAbove != pBegin) nMatch = CommonLength(pAbove[-1], pBytes, n);
    // The entry just below is the match itself when the string goes on past it.
    if (pAbove != pBegin && nMatch == m_lengths[pAbove[-1]])
        return {pAbove[-1], static_cast<uint16_t>(nMatch), static_cast<uint16_t>(pAbove - pBegin)};
    if (pAbove != pEnd) nMatch = std::max(nMatch, CommonLength(*pAbove, pBytes, n));
    const uint16_t* const pMatch = std::partition_point(
        pBegin, pAbove, [&](uint16_t nCode) { return Compare(nCode, pBytes, nMatch) < 0; });
    // No entry begins with the match plus the next byte, so that string goes where this one would.
    return {*pMatch, static_cast<uint16_t>(nMatch), static_cast<uint16_t>(pAbove - pBegin)};
}

int CLzwEncoderDictionary::Compare(uint16_t nCode, const uint8_t* pBytes, size_t nLength) const {
    const size_t nEntry = m_lengths[nCode];
    const int nOrder = std::memcmp(Bytes(nCode), pBytes, std::min(nEntry, nLength));
    if (nOrder != 0) return nOrder;
    return static_cast<int>(nEntry) - static_cast<int>(nLength);
}

size_t CLzwEncoderDictionary::CommonLength(uint16_t nCode, const uint8_t* pBytes, size_t nLength) const {
    const uint8_t* const pEntry = Bytes(nCode);
    const size_t n = std::min<size_t>(m_lengths[nCode], nLength);
    size_t i = 0;
    while (i < n && pEntry[i] == pBytes[i]) ++i;
    return i;
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
    const TMatch match = LongestMatch(pBytes, nLength);
    if (match.nLength < nLength) Add(match.nInsertAt, pBytes, nLength);
}

TLzwPreset::TLzwPreset(uint8_t nFill) : encoder(CLzwEncoderDictionary::Preset(nFill)), decoder() {
    for (uint16_t nCode = 0; nCode < encoder.Growth().nCount; ++nCode)
        decoder[nCode] = {encoder.Bytes(nCode), encoder.Length(nCode)};
}

}  // namespace moremate::RandomAccessLZWBuffer
