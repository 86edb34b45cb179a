// Data files of precalculated positions: the input gives the header's fields and the payload;
// the target puts in the mark, the version and the payload's checksum, so that the reader goes
// on to the payload of every kind.
#include <cstring>

#include "core/chess_exception.h"
#include "fuzz_support.h"
#include "precalc/global/data_file.h"

using namespace moremate;

namespace {

template <typename T>
T Get(const uint8_t* p) {
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kDataFileHeaderBytes) return 0;
    std::vector<uint8_t> bytes(data, data + size);
    std::memcpy(bytes.data(), "MMPRECAL", 8);
    const uint32_t version = 1;
    std::memcpy(&bytes[8], &version, sizeof version);
    const uint64_t checksum =
        PayloadChecksum(bytes.data() + kDataFileHeaderBytes, size - kDataFileHeaderBytes);
    std::memcpy(&bytes[40], &checksum, sizeof checksum);
    const std::filesystem::path file = fuzz::WriteFile("input.dat", bytes.data(), bytes.size());
    const std::string description(reinterpret_cast<const char*>(&bytes[48]),
                                  strnlen(reinterpret_cast<const char*>(&bytes[48]), 32));
    const uint64_t elements = Get<uint64_t>(&bytes[24]) % (uint64_t{1} << 24);
    try {
        const auto storage = ReadDataFile(file, description, elements, (bytes[20] & 1) != 0);
        const uint64_t step = storage->ElementCount() / 64 + 1;
        for (uint64_t i = 0; i < storage->ElementCount(); i += step) storage->MateCode(i);
    } catch (const ChessException&) {
    }
    try {
        UnpackLz4Blocks(std::vector<uint8_t>(data + kDataFileHeaderBytes, data + size),
                        Get<uint32_t>(data + 20) % (uint32_t{1} << 24));
    } catch (const ChessException&) {
    }
    return 0;
}
