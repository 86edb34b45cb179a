// ".idx" companion files: beside a type's data, the sorted list of the indexes whose value is not
// 0 (the mates, and unknown values where the data has them), as little-endian u32 after an 80-byte
// header like that of the data files (mark "MMPREIDX", version, element count, index count,
// checksum, description). With it a look-up of any other index answers "no mate" from memory;
// only the listed ones read the data. The generator writes it with the data; it does not depend
// on the data's storage form.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "precalc/global/global_storage.h"

namespace moremate {

struct TMateIndexHeader {
    uint64_t m_nElements = 0;
    uint64_t m_nIndexes = 0;
    uint64_t m_nChecksum = 0;
};

// Throws ChessException when the data has more elements than u32 indexes reach.
void WriteMateIndexFile(const std::filesystem::path& file, const std::string& description,
                        const CGlobalStorage& storage);
// Throws ChessException kDamagedDataFile + file (+ the reason) for a file that does not fit.
TMateIndexHeader ReadMateIndexHeader(const std::filesystem::path& file, const std::string& description,
                                     uint64_t nElements);
// The indexes of a file whose header `h` ReadMateIndexHeader has read and checked.
std::vector<uint32_t> ReadMateIndexFile(const std::filesystem::path& file, const TMateIndexHeader& h,
                                        uint64_t nElements);

// Answers the indexes not listed as 0 from memory and asks `inner` for the others.
std::unique_ptr<CGlobalStorage> MakeMateIndexedStorage(std::unique_ptr<CGlobalStorage> inner,
                                                       std::vector<uint32_t> indexes);

}  // namespace moremate
