#include "register_file_header.h"

#include <isa-l/crc.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

#include "core/thread_start.h"

namespace moremate {
namespace {

constexpr char kMagic[8] = {'m', 'm', 'T', 'm', 'p', 'R', 'e', 'g'};
constexpr size_t kHeaderCrcOffset = 44;
constexpr uint8_t kHasBlackFileFlag = 1;
constexpr int kLastForm = static_cast<int>(TRegisterFileForm::Lz4eContainer);

template <class TValue>
void Put(uint8_t* p, TValue value) {
    for (size_t i = 0; i < sizeof(TValue); ++i)
        p[i] = static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i));
}

template <class TValue>
TValue Get(const uint8_t* p) {
    uint64_t value = 0;
    for (size_t i = sizeof(TValue); i-- > 0;) value = value << 8 | p[i];
    return static_cast<TValue>(value);
}

}  // namespace

// The gzip checksum (zlib's crc32), folded with carry-less multiplication where the processor has it:
// about three times zlib's pace.
uint32_t UpdateCrc32(uint32_t nCrc, const void* pData, size_t size) {
    return crc32_gzip_refl(nCrc, static_cast<const unsigned char*>(pData), size);
}

uint32_t UpdateCrc32OnThreads(uint32_t nCrc, const void* pData, size_t size) {
    constexpr size_t kMinPart = size_t{1} << 20;
    const size_t nParts =
        std::clamp<size_t>(std::min<size_t>(std::thread::hardware_concurrency(), size / kMinPart), 1, 4);
    if (nParts == 1) return UpdateCrc32(nCrc, pData, size);
    const auto* p = static_cast<const uint8_t*>(pData);
    const size_t nPart = size / nParts;
    const auto first = [&](size_t i) { return i * nPart; };
    const auto length = [&](size_t i) { return i + 1 == nParts ? size - first(i) : nPart; };
    std::vector<uint32_t> crcs(nParts);
    RunOnThreads(nParts,
                 [&](size_t i) { crcs[i] = UpdateCrc32(i == 0 ? nCrc : 0, p + first(i), length(i)); });
    uLong nValue = crcs[0];
    for (size_t i = 1; i < nParts; ++i)
        nValue = crc32_combine(nValue, crcs[i], static_cast<z_off_t>(length(i)));
    return static_cast<uint32_t>(nValue);
}

std::array<uint8_t, kRegisterHeaderSize> EncodeRegisterHeader(const TRegisterFileHeader& header) {
    std::array<uint8_t, kRegisterHeaderSize> bytes{};
    std::memcpy(bytes.data(), kMagic, sizeof kMagic);
    Put<uint16_t>(&bytes[8], kRegisterFormatVersion);
    bytes[10] = header.bBlackToMove ? 1 : 0;
    bytes[11] = static_cast<uint8_t>(header.form);
    bytes[12] = header.bHasBlackFile ? kHasBlackFileFlag : 0;
    Put(&bytes[16], header.nPairId);
    Put(&bytes[24], header.nRecords);
    Put(&bytes[32], header.nDataBytes);
    Put(&bytes[40], header.nDataCrc);
    Put(&bytes[kHeaderCrcOffset], UpdateCrc32(0, bytes.data(), kHeaderCrcOffset));
    return bytes;
}

bool HasRegisterHeaderMagic(const uint8_t* pData, size_t size) {
    return size >= sizeof kMagic && std::memcmp(pData, kMagic, sizeof kMagic) == 0;
}

std::optional<TRegisterFileHeader> DecodeRegisterHeader(const uint8_t* pHeader, std::string& sError) {
    if (Get<uint32_t>(pHeader + kHeaderCrcOffset) != UpdateCrc32(0, pHeader, kHeaderCrcOffset) ||
        pHeader[10] > 1 || pHeader[11] > kLastForm) {
        sError = "Error - the register file's header is damaged";
        return std::nullopt;
    }
    const uint16_t nVersion = Get<uint16_t>(pHeader + 8);
    if (nVersion != kRegisterFormatVersion) {
        sError = "Error - register file of format version " + std::to_string(nVersion) +
                 ", this program reads version " + std::to_string(kRegisterFormatVersion);
        return std::nullopt;
    }
    TRegisterFileHeader header;
    header.bBlackToMove = pHeader[10] == 1;
    header.form = static_cast<TRegisterFileForm>(pHeader[11]);
    header.bHasBlackFile = (pHeader[12] & kHasBlackFileFlag) != 0;
    header.nPairId = Get<uint64_t>(pHeader + 16);
    header.nRecords = Get<uint64_t>(pHeader + 24);
    header.nDataBytes = Get<uint64_t>(pHeader + 32);
    header.nDataCrc = Get<uint32_t>(pHeader + 40);
    return header;
}

const char* SideText(bool bBlackToMove) {
    return bBlackToMove ? "Black to move" : "White to move";
}

}  // namespace moremate
