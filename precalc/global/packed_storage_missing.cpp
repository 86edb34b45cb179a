// Stands in for the random-access buffers in a build without them: their file kinds are then
// reported as not readable.
#include "core/chess_exception.h"
#include "global_storage.h"

namespace moremate {

namespace {
inline constexpr const char* kNoBuffers = "Random-access buffers are not built into this program";
}

std::unique_ptr<CGlobalStorage> MakePackedStorage(TStorageKind, const std::vector<uint8_t>&, unsigned) {
    throw ChessException(kNoBuffers);
}

std::unique_ptr<CGlobalStorage> OpenPackedStorage(TStorageKind, std::vector<uint8_t>, unsigned) {
    throw ChessException(kNoBuffers);
}

bool PackedStorageAvailable() {
    return false;
}

}  // namespace moremate
