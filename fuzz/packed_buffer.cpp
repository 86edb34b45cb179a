// The packed random-access buffers (LZW and LZ4 blocks): an image opened in the shape the first
// byte chooses, then elements read across the whole buffer.
#include <vector>

#include "core/chess_exception.h"
#include "precalc/buffers/packed_buffer.h"

using namespace moremate;
using namespace moremate::RandomAccessLZWBuffer;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const TPacking packing = (data[0] & 1) != 0 ? TPacking::Lz4 : TPacking::Lzw;
    const unsigned elementSize = (data[0] & 2) != 0 ? 2 : 1;
    const bool forUpdates = (data[0] & 4) != 0;
    try {
        const auto buffer =
            OpenPackedBuffer(packing, std::vector<uint8_t>(data + 1, data + size), elementSize, forUpdates);
        const uint64_t count = buffer->ElementCount();
        const uint64_t step = count / 64 + 1;
        for (uint64_t i = 0; i < count; i += step) {
            try {
                buffer->Element(i);
            } catch (const ChessException&) {
            }
        }
    } catch (const ChessException&) {
    }
    return 0;
}
