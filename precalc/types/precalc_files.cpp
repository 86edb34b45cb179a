#include "precalc_files.h"

#include <cctype>

#include "core/chess_exception.h"
#include "settings/program_folder.h"

namespace moremate {

const char* StorageSuffix(TStorageKind kind) {
    switch (kind) {
        case TStorageKind::kLz4:
            return ".lz4";
        case TStorageKind::kPackedLzw:
            return ".packed.lzw";
        case TStorageKind::kPackedLz4:
            return ".packed.lz4";
        case TStorageKind::kTwoBit:
            return ".2bit";
        case TStorageKind::kRunLength:
            return ".rle";
        case TStorageKind::kPlain:
            break;
    }
    return "";
}

const char* StorageName(TStorageKind kind) {
    switch (kind) {
        case TStorageKind::kLz4:
            return "lz4";
        case TStorageKind::kPackedLzw:
            return "lzw";
        case TStorageKind::kPackedLz4:
            return "packed-lz4";
        case TStorageKind::kTwoBit:
            return "2bit";
        case TStorageKind::kRunLength:
            return "rle";
        case TStorageKind::kPlain:
            break;
    }
    return "plain";
}

TStorageKind StorageKindNamed(const std::string& name) {
    for (const TStorageKind kind : kAllStorageKinds)
        if (name == StorageName(kind)) return kind;
    throw ChessException("Unknown storage form: " + name + " (plain, lz4, lzw, packed-lz4, 2bit or rle)");
}

std::string MarkedBaseName(const std::string& description) {
    std::string name;
    bool plusSeen = false;
    int depth = 0;
    char previous = 0;
    for (const char c : description) {
        name += c;
        if (c == '(') ++depth;
        if (c == ')' && depth > 0) --depth;
        const bool lower = std::islower(static_cast<unsigned char>(c)) != 0;
        if (lower && (plusSeen ? previous == '+' : depth == 0)) name += '_';
        if (c == '+') plusSeen = true;
        previous = c;
    }
    return name;
}

std::filesystem::path PrecalcDataFolder(const std::string& precalcPath) {
    return precalcPath.empty() ? ProgramFolder() : std::filesystem::path(precalcPath);
}

std::filesystem::path TypeFolderName(const TPrecalcType& type) {
    return std::filesystem::path(type.IsCustom() ? kCustomPrecalcFolder : kPrecalcFolder) /
           (std::to_string(type.TotalPieces()) + "pieces" + (type.HasPawns() ? "+pawns" : "-pawns"));
}

std::filesystem::path TypeFolder(const std::filesystem::path& dataFolder, const TPrecalcType& type) {
    const std::filesystem::path sub = dataFolder / TypeFolderName(type);
    std::error_code error;
    return std::filesystem::is_directory(sub, error) ? sub : sub.parent_path();
}

std::filesystem::path TypeFile(const std::filesystem::path& dataFolder, const TPrecalcType& type,
                               TStorageKind kind, bool bDetails) {
    return TypeFolder(dataFolder, type) / (MarkedBaseName(type.Description()) + ".precalc" +
                                           (bDetails ? ".details" : "") + StorageSuffix(kind));
}

std::filesystem::path MateIndexFile(const std::filesystem::path& dataFolder, const TPrecalcType& type) {
    return TypeFolder(dataFolder, type) / (MarkedBaseName(type.Description()) + ".precalc.idx");
}

bool IsSwitchedOff(const std::filesystem::path& dataFolder, const TPrecalcType& type) {
    const std::filesystem::path folder = TypeFolder(dataFolder, type);
    const std::string base = MarkedBaseName(type.Description()) + kSkipThisSuffix + ".precalc";
    for (const bool details : {false, true})
        for (const TStorageKind kind : kAllStorageKinds) {
            std::error_code error;
            if (std::filesystem::exists(folder / (base + (details ? ".details" : "") + StorageSuffix(kind)),
                                        error))
                return true;
        }
    return false;
}

}  // namespace moremate
