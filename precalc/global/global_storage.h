// The forms a global register keeps its elements in. An element is the stored value of one
// index: 0 no mate, v >= 1 a mate, 255 unknown where the form has it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "precalc/types/precalc_files.h"

namespace moremate {

enum class TStorageForm { kDiskAccess, kTwoBit, kPlain, kRunLength, kRandomAccess };

inline constexpr uint16_t kUnknownMate = 65535;

const char* StorageFormName(TStorageForm form);

class CGlobalStorage {
  public:
    virtual ~CGlobalStorage() = default;
    virtual TStorageForm Form() const = 0;
    // The file kind that keeps this form as it is.
    virtual TStorageKind Kind() const = 0;
    virtual uint64_t ElementCount() const = 0;
    virtual unsigned ElementSize() const { return 1; }
    // The stored value; kUnknownMate when it cannot be read.
    virtual uint16_t Element(uint64_t nIndex) const = 0;
    // The value as the global register answers it: 0 no mate, kUnknownMate unknown, else the
    // number of single moves 2v - 1 (the 2-bit form answers its two bits as they are).
    virtual uint16_t MateCode(uint64_t nIndex) const;
    // Throws ChessException where the form cannot be changed.
    virtual void Set(uint64_t nIndex, uint16_t nValue) = 0;
    virtual size_t MemoryBytes() const = 0;
    // The bytes a data file of Kind() holds.
    virtual std::vector<uint8_t> Payload() const = 0;
};

// Element values one per byte (or little-endian word).
std::unique_ptr<CGlobalStorage> MakePlainStorage(std::vector<uint8_t> elements, unsigned elementSize);
// Throws ChessException when a value does not fit in two bits.
std::unique_ptr<CGlobalStorage> MakeTwoBitStorage(const std::vector<uint8_t>& elements);
std::unique_ptr<CGlobalStorage> OpenTwoBitStorage(std::vector<uint8_t> payload, uint64_t nElements);
// Throws ChessException when a value between 128 and 254 occurs: those bytes mark repeats.
std::unique_ptr<CGlobalStorage> MakeRunLengthStorage(const std::vector<uint8_t>& elements);
// Throws ChessException for an image whose offsets do not fit.
std::unique_ptr<CGlobalStorage> OpenRunLengthStorage(std::vector<uint8_t> image);
// Reads elements from the data file on demand, `dataOffset` bytes into it.
std::unique_ptr<CGlobalStorage> OpenDiskStorage(const std::filesystem::path& file, uint64_t dataOffset,
                                                uint64_t nElements, unsigned elementSize);
// Random-access buffers: kind kPackedLzw or kPackedLz4.
std::unique_ptr<CGlobalStorage> MakePackedStorage(TStorageKind kind, const std::vector<uint8_t>& elements,
                                                  unsigned elementSize);
// The form a file of `kind` keeps (one-byte elements); plain for kPlain and kLz4.
std::unique_ptr<CGlobalStorage> MakeStorageOfKind(TStorageKind kind, std::vector<uint8_t> elements);
std::unique_ptr<CGlobalStorage> OpenPackedStorage(TStorageKind kind, std::vector<uint8_t> image,
                                                  unsigned elementSize);

}  // namespace moremate
