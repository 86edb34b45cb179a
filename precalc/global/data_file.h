// Data files of the global register: an 80-byte header (the mark "MMPRECAL", version, kind,
// element size, element count, payload size, FNV-1a checksum of the payload, the type's
// description), then the payload of the kind. Files are written under a temporary name and
// renamed; a file whose header or checksum does not fit is refused as damaged.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "precalc/global/global_storage.h"

namespace moremate {

inline constexpr uint64_t kDataFileHeaderBytes = 80;
inline constexpr const char* kDamagedDataFile = "Damaged file of precalculated data: ";

struct TDataFileHeader {
    TStorageKind m_kind = TStorageKind::kPlain;
    unsigned m_nElementSize = 1;
    uint64_t m_nElements = 0;
    uint64_t m_nPayloadBytes = 0;
    uint64_t m_nChecksum = 0;
    std::string m_sDescription;
};

// The largest file of `nElements` elements this program reads: no form of the data takes more
// than four times the elements' two bytes each (packed forms of data that does not pack grow by a
// fraction of that), whatever its header says. A folder, a pipe, a device or a larger file is
// refused by name before it is read.
uint64_t DataFileLimit(uint64_t nElements);

uint64_t PayloadChecksum(const uint8_t* data, size_t size, uint64_t seed = 14695981039346656037ull);

// Writes `storage` in its own kind, or as LZ4 blocks of its elements with kind kLz4.
void WriteDataFile(const std::filesystem::path& file, const std::string& description,
                   const CGlobalStorage& storage, TStorageKind kind);
// Reads and checks the header; throws ChessException kDamagedDataFile + file (+ the reason).
TDataFileHeader ReadDataFileHeader(const std::filesystem::path& file, const std::string& description,
                                   uint64_t nElements);
// The storage a file holds. A plain file in disk access is checked once, then read on demand.
std::unique_ptr<CGlobalStorage> ReadDataFile(const std::filesystem::path& file,
                                             const std::string& description, uint64_t nElements,
                                             bool bDiskAccess);

// Whole data as LZ4 blocks: u32 unpacked size, u32 packed size, the block; repeated.
std::vector<uint8_t> PackLz4Blocks(const std::vector<uint8_t>& bytes);
// Throws ChessException when the blocks do not unpack to `nBytes`.
std::vector<uint8_t> UnpackLz4Blocks(const std::vector<uint8_t>& packed, uint64_t nBytes);

}  // namespace moremate
