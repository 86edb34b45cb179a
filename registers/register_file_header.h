// The header in front of every register file written by this program (48 bytes, little-endian):
//
//   0  8 bytes  "mmTmpReg"
//   8  u16      format version (kRegisterFormatVersion)
//  10  u8       side to move of the positions: 0 White, 1 Black
//  11  u8       kind: the form of the data behind the header (TRegisterFileForm)
//  12  u8       flags: bit 0, the White file of a pair whose Black file lies beside it
//  13  3 bytes  0
//  16  u64      pair id, the same in the White and the Black file of one save
//  24  u64      number of entry records in the data (before packing)
//  32  u64      size of the data behind the header
//  40  u32      CRC-32 of the data behind the header
//  44  u32      CRC-32 of bytes 0 to 43
//
// The data behind it are the stream of register_file.h, plain or packed. A file without the
// header is of the older form and is read without these checks.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "register_file.h"

namespace moremate {

inline constexpr size_t kRegisterHeaderSize = 48;
inline constexpr uint16_t kRegisterFormatVersion = 1;

struct TRegisterFileHeader {
    bool bBlackToMove = false;
    TRegisterFileForm form = TRegisterFileForm::Plain;
    bool bHasBlackFile = false;  // set in the White file of a pair
    uint64_t nPairId = 0;
    uint64_t nRecords = 0;
    uint64_t nDataBytes = 0;
    uint32_t nDataCrc = 0;
};

std::array<uint8_t, kRegisterHeaderSize> EncodeRegisterHeader(const TRegisterFileHeader& header);

// Whether the bytes begin with the header's magic (at least 8 bytes).
bool HasRegisterHeaderMagic(const uint8_t* pData, size_t size);

// The header, or the reason it cannot be used: damaged, or of a newer version.
std::optional<TRegisterFileHeader> DecodeRegisterHeader(const uint8_t* pHeader, std::string& sError);

// CRC-32 (the polynomial of zip and PNG), continued from `nCrc` over the bytes.
uint32_t UpdateCrc32(uint32_t nCrc, const void* pData, size_t size);
// The same, the bytes cut into one part per processor (at most four) whose checksums are worked
// out side by side and then combined: for the megabytes a register file is read in.
uint32_t UpdateCrc32OnThreads(uint32_t nCrc, const void* pData, size_t size);

// "White to move" / "Black to move".
const char* SideText(bool bBlackToMove);

}  // namespace moremate
