#include "global_storage.h"

namespace moremate {

const char* StorageFormName(TStorageForm form) {
    switch (form) {
        case TStorageForm::kDiskAccess:
            return "disk access";
        case TStorageForm::kTwoBit:
            return "2-bit packed";
        case TStorageForm::kPlain:
            return "plain array";
        case TStorageForm::kRunLength:
            return "run-length blocks";
        case TStorageForm::kRandomAccess:
            return "random-access buffer";
    }
    return "";
}

uint16_t CGlobalStorage::MateCode(uint64_t nIndex) const {
    const uint16_t value = Element(nIndex);
    if (value == kUnknownMate || (ElementSize() == 1 && value == 255)) return kUnknownMate;
    return value == 0 ? 0 : static_cast<uint16_t>(2 * value - 1);
}

std::unique_ptr<CGlobalStorage> MakeStorageOfKind(TStorageKind kind, std::vector<uint8_t> elements) {
    switch (kind) {
        case TStorageKind::kTwoBit:
            return MakeTwoBitStorage(elements);
        case TStorageKind::kRunLength:
            return MakeRunLengthStorage(elements);
        case TStorageKind::kPackedLzw:
        case TStorageKind::kPackedLz4:
            return MakePackedStorage(kind, elements, 1);
        case TStorageKind::kPlain:
        case TStorageKind::kLz4:
            break;
    }
    return MakePlainStorage(std::move(elements), 1);
}

}  // namespace moremate
