// Rewriting a type's data file in another storage form, and how packed each form is for the
// option AskForGlobalRegisterRecompression: 0 for the forms unpacked whole or not packed (plain,
// ".lz4", 2-bit, run-length), 1 for ".packed.lz4", 2 for ".packed.lzw" (the smallest).
#pragma once

#include <filesystem>

#include "precalc/types/precalc_files.h"

namespace moremate {

inline constexpr const char* kRecompressionQuestion = "Recompress it now?";

int PackingLevel(TStorageKind kind);
// The form a level asks for: kPackedLz4 for 1, kPackedLzw from 2 on.
TStorageKind KindForPackingLevel(int level);

// Writes the data of `file` (the type's data in some form) as `kind` beside it: under a temporary
// name, renamed, read back and compared element by element with the old data; the old file is
// removed only when they agree. Returns the new file; throws ChessException (and keeps the old
// file) when the new one cannot be written or does not agree.
std::filesystem::path RecompressTypeData(const std::filesystem::path& dataFolder, const TPrecalcType& type,
                                         const std::filesystem::path& file, TStorageKind kind);

}  // namespace moremate
