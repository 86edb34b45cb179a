#include "data_file.h"

#include <cstring>
#include <fstream>

#include "core/chess_exception.h"
#include "settings/bounded_file.h"

namespace moremate {
namespace {

constexpr char kMark[8] = {'M', 'M', 'P', 'R', 'E', 'C', 'A', 'L'};
constexpr uint32_t kVersion = 1;
constexpr size_t kDescriptionBytes = 32;

template <typename T>
void Put(uint8_t* at, T value) {
    std::memcpy(at, &value, sizeof(T));
}

template <typename T>
T Get(const uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof(T));
    return value;
}

std::vector<uint8_t> HeaderBytes(const TDataFileHeader& h) {
    std::vector<uint8_t> bytes(kDataFileHeaderBytes, 0);
    std::memcpy(bytes.data(), kMark, sizeof kMark);
    Put<uint32_t>(&bytes[8], kVersion);
    Put<uint32_t>(&bytes[12], static_cast<uint32_t>(h.m_kind));
    Put<uint32_t>(&bytes[16], h.m_nElementSize);
    Put<uint64_t>(&bytes[24], h.m_nElements);
    Put<uint64_t>(&bytes[32], h.m_nPayloadBytes);
    Put<uint64_t>(&bytes[40], h.m_nChecksum);
    std::memcpy(&bytes[48], h.m_sDescription.data(), std::min(h.m_sDescription.size(), kDescriptionBytes));
    return bytes;
}

[[noreturn]] void Damaged(const std::filesystem::path& file, const std::string& reason) {
    throw ChessException(kDamagedDataFile + file.string() + " (" + reason + ")");
}

std::vector<uint8_t> ReadPayload(const std::filesystem::path& file, const TDataFileHeader& h) {
    // Checked before the payload's memory is taken: a damaged size could ask for any amount.
    std::error_code error;
    const uint64_t fileBytes = std::filesystem::file_size(file, error);
    if (error || fileBytes - kDataFileHeaderBytes < h.m_nPayloadBytes)
        Damaged(file, "shorter than its header says");
    std::ifstream in(file, std::ios::binary);
    std::vector<uint8_t> payload(h.m_nPayloadBytes);
    in.seekg(static_cast<std::streamoff>(kDataFileHeaderBytes));
    if (!in.read(reinterpret_cast<char*>(payload.data()), static_cast<std::streamsize>(payload.size())))
        Damaged(file, "shorter than its header says");
    if (PayloadChecksum(payload.data(), payload.size()) != h.m_nChecksum) Damaged(file, "checksum");
    return payload;
}

// Disk access keeps no copy: the payload is checked in slices.
void CheckPayloadOnDisk(const std::filesystem::path& file, const TDataFileHeader& h) {
    std::ifstream in(file, std::ios::binary);
    in.seekg(static_cast<std::streamoff>(kDataFileHeaderBytes));
    std::vector<char> slice(1 << 20);
    uint64_t checksum = PayloadChecksum(nullptr, 0), left = h.m_nPayloadBytes;
    while (left > 0) {
        const size_t n = static_cast<size_t>(std::min<uint64_t>(left, slice.size()));
        if (!in.read(slice.data(), static_cast<std::streamsize>(n)))
            Damaged(file, "shorter than its header says");
        checksum = PayloadChecksum(reinterpret_cast<const uint8_t*>(slice.data()), n, checksum);
        left -= n;
    }
    if (checksum != h.m_nChecksum) Damaged(file, "checksum");
}

std::unique_ptr<CGlobalStorage> StorageOfPayload(const TDataFileHeader& h, std::vector<uint8_t> payload) {
    switch (h.m_kind) {
        case TStorageKind::kPlain:
            return MakePlainStorage(std::move(payload), h.m_nElementSize);
        case TStorageKind::kLz4:
            return MakePlainStorage(UnpackLz4Blocks(payload, h.m_nElements * h.m_nElementSize),
                                    h.m_nElementSize);
        case TStorageKind::kTwoBit:
            return OpenTwoBitStorage(std::move(payload), h.m_nElements);
        case TStorageKind::kRunLength:
            return OpenRunLengthStorage(std::move(payload));
        case TStorageKind::kPackedLzw:
        case TStorageKind::kPackedLz4:
            return OpenPackedStorage(h.m_kind, std::move(payload), h.m_nElementSize);
    }
    return nullptr;
}

}  // namespace

uint64_t DataFileLimit(uint64_t nElements) {
    return kDataFileHeaderBytes + nElements * 8 + (1 << 20);
}

uint64_t PayloadChecksum(const uint8_t* data, size_t size, uint64_t seed) {
    uint64_t hash = seed;
    for (size_t i = 0; i < size; ++i) hash = (hash ^ data[i]) * 1099511628211ull;
    return hash;
}

void WriteDataFile(const std::filesystem::path& file, const std::string& description,
                   const CGlobalStorage& storage, TStorageKind kind) {
    const std::vector<uint8_t> payload =
        kind == TStorageKind::kLz4 ? PackLz4Blocks(storage.Payload()) : storage.Payload();
    TDataFileHeader h{kind,
                      storage.ElementSize(),
                      storage.ElementCount(),
                      payload.size(),
                      PayloadChecksum(payload.data(), payload.size()),
                      description};
    std::filesystem::create_directories(file.parent_path());
    const std::filesystem::path temporary = file.string() + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        const std::vector<uint8_t> header = HeaderBytes(h);
        out.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
        out.write(reinterpret_cast<const char*>(payload.data()),
                  static_cast<std::streamsize>(payload.size()));
        if (!out.flush()) throw ChessException("Cannot write file " + temporary.string());
    }
    std::filesystem::rename(temporary, file);
}

TDataFileHeader ReadDataFileHeader(const std::filesystem::path& file, const std::string& description,
                                   uint64_t nElements) {
    BoundedFileSize(file, DataFileLimit(nElements));
    std::ifstream in(file, std::ios::binary);
    if (!in) throw ChessException("Cannot open file " + file.string());
    uint8_t bytes[kDataFileHeaderBytes];
    if (!in.read(reinterpret_cast<char*>(bytes), sizeof bytes)) Damaged(file, "no header");
    if (std::memcmp(bytes, kMark, sizeof kMark) != 0 || Get<uint32_t>(&bytes[8]) != kVersion)
        Damaged(file, "not a data file of this program");
    TDataFileHeader h;
    const uint32_t kind = Get<uint32_t>(&bytes[12]);
    if (kind > static_cast<uint32_t>(TStorageKind::kRunLength)) Damaged(file, "unknown kind");
    h.m_kind = static_cast<TStorageKind>(kind);
    h.m_nElementSize = Get<uint32_t>(&bytes[16]);
    h.m_nElements = Get<uint64_t>(&bytes[24]);
    h.m_nPayloadBytes = Get<uint64_t>(&bytes[32]);
    h.m_nChecksum = Get<uint64_t>(&bytes[40]);
    h.m_sDescription.assign(reinterpret_cast<const char*>(&bytes[48]),
                            strnlen(reinterpret_cast<const char*>(&bytes[48]), kDescriptionBytes));
    if (h.m_sDescription != description.substr(0, kDescriptionBytes))
        Damaged(file, "holds " + h.m_sDescription);
    if (h.m_nElements != nElements || (h.m_nElementSize != 1 && h.m_nElementSize != 2))
        Damaged(file, "wrong element count");
    if (h.m_kind == TStorageKind::kPlain && h.m_nPayloadBytes != nElements * h.m_nElementSize)
        Damaged(file, "wrong size");
    return h;
}

std::unique_ptr<CGlobalStorage> ReadDataFile(const std::filesystem::path& file,
                                             const std::string& description, uint64_t nElements,
                                             bool bDiskAccess) {
    const TDataFileHeader h = ReadDataFileHeader(file, description, nElements);
    if (bDiskAccess && h.m_kind == TStorageKind::kPlain) {
        CheckPayloadOnDisk(file, h);
        return OpenDiskStorage(file, kDataFileHeaderBytes, h.m_nElements, h.m_nElementSize);
    }
    try {
        return StorageOfPayload(h, ReadPayload(file, h));
    } catch (const ChessException& e) {
        if (std::string(e.what()).starts_with(kDamagedDataFile)) throw;
        Damaged(file, e.what());
    }
}

}  // namespace moremate
