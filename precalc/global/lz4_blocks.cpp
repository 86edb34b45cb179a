#include <lz4.h>

#include <cstring>

#include "core/chess_exception.h"
#include "data_file.h"

namespace moremate {
namespace {

constexpr size_t kLz4BlockBytes = 1 << 20;

void PutU32(std::vector<uint8_t>& out, uint32_t value) {
    const size_t at = out.size();
    out.resize(at + 4);
    std::memcpy(&out[at], &value, 4);
}

}  // namespace

std::vector<uint8_t> PackLz4Blocks(const std::vector<uint8_t>& bytes) {
    std::vector<uint8_t> out;
    for (size_t at = 0; at < bytes.size(); at += kLz4BlockBytes) {
        const int size = static_cast<int>(std::min(kLz4BlockBytes, bytes.size() - at));
        std::vector<char> block(static_cast<size_t>(LZ4_compressBound(size)));
        const int packed = LZ4_compress_default(reinterpret_cast<const char*>(&bytes[at]), block.data(), size,
                                                static_cast<int>(block.size()));
        if (packed <= 0) throw ChessException("LZ4 compression failed");
        PutU32(out, static_cast<uint32_t>(size));
        PutU32(out, static_cast<uint32_t>(packed));
        out.insert(out.end(), block.begin(), block.begin() + packed);
    }
    return out;
}

std::vector<uint8_t> UnpackLz4Blocks(const std::vector<uint8_t>& packed, uint64_t nBytes) {
    std::vector<uint8_t> out(nBytes);
    size_t at = 0, done = 0;
    const auto fail = []() { throw ChessException("LZ4 blocks do not unpack"); };
    while (at < packed.size()) {
        uint32_t size, packedSize;
        if (packed.size() - at < 8) fail();
        std::memcpy(&size, &packed[at], 4);
        std::memcpy(&packedSize, &packed[at + 4], 4);
        at += 8;
        if (packedSize > packed.size() - at || size > nBytes - done) fail();
        // Pointers, not elements: an empty block may stand at the end of either vector.
        const int got = LZ4_decompress_safe(reinterpret_cast<const char*>(packed.data() + at),
                                            reinterpret_cast<char*>(out.data() + done),
                                            static_cast<int>(packedSize), static_cast<int>(size));
        if (got != static_cast<int>(size)) fail();
        at += packedSize;
        done += size;
    }
    if (done != nBytes) fail();
    return out;
}

}  // namespace moremate
