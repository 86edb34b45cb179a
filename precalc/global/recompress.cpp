#include "recompress.h"

#include "core/chess_exception.h"
#include "precalc/global/data_file.h"

namespace moremate {

int PackingLevel(TStorageKind kind) {
    switch (kind) {
        case TStorageKind::kPackedLzw:
            return 2;
        case TStorageKind::kPackedLz4:
            return 1;
        default:
            return 0;
    }
}

TStorageKind KindForPackingLevel(int level) {
    return level >= 2 ? TStorageKind::kPackedLzw : TStorageKind::kPackedLz4;
}

std::filesystem::path RecompressTypeData(const std::filesystem::path& dataFolder, const TPrecalcType& type,
                                         const std::filesystem::path& file, TStorageKind kind) {
    const std::filesystem::path target = TypeFile(dataFolder, type, kind);
    if (target == file) return file;
    const uint64_t elements = TypeIndexCount(type);
    const std::unique_ptr<CGlobalStorage> old = ReadDataFile(file, type.Description(), elements, false);
    if (old->ElementSize() != 1)
        throw ChessException("Only data of one byte per index can be recompressed: " + file.string());
    std::vector<uint8_t> values;
    if (old->Kind() == TStorageKind::kPlain) {
        values = old->Payload();
    } else {
        values.resize(elements);
        for (uint64_t i = 0; i < elements; ++i) values[i] = static_cast<uint8_t>(old->Element(i));
    }
    WriteDataFile(target, type.Description(), *MakeStorageOfKind(kind, std::move(values)), kind);
    const std::unique_ptr<CGlobalStorage> written = ReadDataFile(target, type.Description(), elements, false);
    for (uint64_t i = 0; i < elements; ++i)
        if (written->Element(i) != old->Element(i)) {
            std::error_code error;
            std::filesystem::remove(target, error);
            throw ChessException("Recompressed data of " + type.Description() + " differ at index " +
                                 std::to_string(i) + "; " + file.string() + " is kept");
        }
    std::filesystem::remove(file);
    return target;
}

}  // namespace moremate
