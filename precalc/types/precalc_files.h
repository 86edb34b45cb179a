// Where the data of a position type lies: "Precalc/" (or "CustomPrecalc/" for custom types) in
// the data folder, in the subfolder of its piece count ("4pieces-pawns", "3pieces+pawns", ...)
// when that exists, under a base name that stays distinct on file systems that ignore case.
#pragma once

#include <filesystem>
#include <string>

#include "precalc/types/position_type.h"

namespace moremate {

// How a data file holds its elements. The first three are the compressed kinds; the others keep
// one form of the global register as it is in memory.
enum class TStorageKind : int {
    kPlain = 0,      // ".precalc": one element per index
    kLz4 = 1,        // ".precalc.lz4": the whole data as LZ4 blocks
    kPackedLzw = 2,  // ".precalc.packed.lzw": a random-access LZW buffer
    kPackedLz4 = 3,  // ".precalc.packed.lz4": a random-access LZ4 buffer
    kTwoBit = 4,     // ".precalc.2bit": four elements per byte
    kRunLength = 5,  // ".precalc.rle": run-length blocks of 2,048 indexes
};

inline constexpr TStorageKind kAllStorageKinds[] = {TStorageKind::kPlain,     TStorageKind::kLz4,
                                                    TStorageKind::kPackedLzw, TStorageKind::kPackedLz4,
                                                    TStorageKind::kTwoBit,    TStorageKind::kRunLength};

const char* StorageSuffix(TStorageKind kind);
// "plain", "lz4", "lzw", "packed-lz4", "2bit", "rle": the command line's names of the kinds.
const char* StorageName(TStorageKind kind);
// Throws ChessException for a name that is none of them.
TStorageKind StorageKindNamed(const std::string& name);

// The description with "_" after black piece letters: every lowercase letter outside parentheses
// up to the first "+", after that only a lowercase letter right after a "+".
std::string MarkedBaseName(const std::string& description);

// The data folder: `precalcPath` when set, else the program folder.
std::filesystem::path PrecalcDataFolder(const std::string& precalcPath);
inline constexpr const char* kPrecalcFolder = "Precalc";
inline constexpr const char* kCustomPrecalcFolder = "CustomPrecalc";

// "Precalc" or "CustomPrecalc" in the data folder, then the piece-count subfolder.
std::filesystem::path TypeFolderName(const TPrecalcType& type);
// The folder the type's files are read from: the piece-count subfolder when it exists.
std::filesystem::path TypeFolder(const std::filesystem::path& dataFolder, const TPrecalcType& type);
std::filesystem::path TypeFile(const std::filesystem::path& dataFolder, const TPrecalcType& type,
                               TStorageKind kind, bool bDetails = false);
// The ".idx" companion of a type's data (see mate_index_file.h), one for every storage form.
std::filesystem::path MateIndexFile(const std::filesystem::path& dataFolder, const TPrecalcType& type);

// A base name with this suffix switches a type off: a file "KQk_r__SKIPTHIS.precalc..." (in any
// storage form, data or an empty marker) makes the lookup of the type's data fail on purpose, so
// that its files can stay where they are.
inline constexpr const char* kSkipThisSuffix = "_SKIPTHIS";
bool IsSwitchedOff(const std::filesystem::path& dataFolder, const TPrecalcType& type);

}  // namespace moremate
