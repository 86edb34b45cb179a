#include "mate_index_file.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "core/chess_exception.h"
#include "precalc/global/data_file.h"

namespace moremate {
namespace {

constexpr char kMark[8] = {'M', 'M', 'P', 'R', 'E', 'I', 'D', 'X'};
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderBytes = 80;
constexpr size_t kDescriptionBytes = 32;

[[noreturn]] void Damaged(const std::filesystem::path& file, const std::string& reason) {
    throw ChessException(kDamagedDataFile + file.string() + " (" + reason + ")");
}

std::vector<uint8_t> HeaderBytes(const TMateIndexHeader& h, const std::string& description) {
    std::vector<uint8_t> bytes(kHeaderBytes, 0);
    std::memcpy(bytes.data(), kMark, sizeof kMark);
    std::memcpy(&bytes[8], &kVersion, 4);
    std::memcpy(&bytes[16], &h.m_nElements, 8);
    std::memcpy(&bytes[24], &h.m_nIndexes, 8);
    std::memcpy(&bytes[32], &h.m_nChecksum, 8);
    std::memcpy(&bytes[48], description.data(), std::min(description.size(), kDescriptionBytes));
    return bytes;
}

class CMateIndexedStorage : public CGlobalStorage {
  public:
    CMateIndexedStorage(std::unique_ptr<CGlobalStorage> inner, std::vector<uint32_t> indexes)
        : m_pInner(std::move(inner)), m_vIndexes(std::move(indexes)) {}
    TStorageForm Form() const override { return m_pInner->Form(); }
    TStorageKind Kind() const override { return m_pInner->Kind(); }
    uint64_t ElementCount() const override { return m_pInner->ElementCount(); }
    unsigned ElementSize() const override { return m_pInner->ElementSize(); }
    uint16_t Element(uint64_t nIndex) const override {
        return std::binary_search(m_vIndexes.begin(), m_vIndexes.end(), static_cast<uint32_t>(nIndex))
                   ? m_pInner->Element(nIndex)
                   : 0;
    }
    void Set(uint64_t, uint16_t) override {
        throw ChessException("Precalculated data with a mate index cannot be changed");
    }
    size_t MemoryBytes() const override {
        return m_pInner->MemoryBytes() + m_vIndexes.size() * sizeof(uint32_t);
    }
    std::vector<uint8_t> Payload() const override { return m_pInner->Payload(); }

  private:
    std::unique_ptr<CGlobalStorage> m_pInner;
    std::vector<uint32_t> m_vIndexes;
};

}  // namespace

void WriteMateIndexFile(const std::filesystem::path& file, const std::string& description,
                        const CGlobalStorage& storage) {
    const uint64_t n = storage.ElementCount();
    if (n > UINT32_MAX) throw ChessException("Too many indexes for a mate index file: " + file.string());
    std::vector<uint32_t> indexes;
    for (uint64_t i = 0; i < n; ++i)
        if (storage.Element(i) != 0) indexes.push_back(static_cast<uint32_t>(i));
    const auto* payload = reinterpret_cast<const uint8_t*>(indexes.data());
    const size_t bytes = indexes.size() * sizeof(uint32_t);
    const TMateIndexHeader h{n, indexes.size(), PayloadChecksum(payload, bytes)};
    const std::filesystem::path temporary = file.string() + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        const std::vector<uint8_t> header = HeaderBytes(h, description);
        out.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
        out.write(reinterpret_cast<const char*>(payload), static_cast<std::streamsize>(bytes));
        if (!out.flush()) throw ChessException("Cannot write file " + temporary.string());
    }
    std::filesystem::rename(temporary, file);
}

TMateIndexHeader ReadMateIndexHeader(const std::filesystem::path& file, const std::string& description,
                                     uint64_t nElements) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw ChessException("Cannot open file " + file.string());
    uint8_t bytes[kHeaderBytes];
    if (!in.read(reinterpret_cast<char*>(bytes), sizeof bytes)) Damaged(file, "no header");
    uint32_t version = 0;
    std::memcpy(&version, &bytes[8], 4);
    if (std::memcmp(bytes, kMark, sizeof kMark) != 0 || version != kVersion)
        Damaged(file, "not a mate index file of this program");
    TMateIndexHeader h;
    std::memcpy(&h.m_nElements, &bytes[16], 8);
    std::memcpy(&h.m_nIndexes, &bytes[24], 8);
    std::memcpy(&h.m_nChecksum, &bytes[32], 8);
    const std::string held(reinterpret_cast<const char*>(&bytes[48]),
                           strnlen(reinterpret_cast<const char*>(&bytes[48]), kDescriptionBytes));
    if (held != description.substr(0, kDescriptionBytes)) Damaged(file, "holds " + held);
    if (h.m_nElements != nElements || h.m_nIndexes > nElements) Damaged(file, "wrong element count");
    std::error_code error;
    if (std::filesystem::file_size(file, error) != kHeaderBytes + h.m_nIndexes * sizeof(uint32_t) || error)
        Damaged(file, "wrong size");
    return h;
}

std::vector<uint32_t> ReadMateIndexFile(const std::filesystem::path& file, const TMateIndexHeader& h,
                                        uint64_t nElements) {
    std::vector<uint32_t> indexes(h.m_nIndexes);
    std::ifstream in(file, std::ios::binary);
    in.seekg(static_cast<std::streamoff>(kHeaderBytes));
    if (!in.read(reinterpret_cast<char*>(indexes.data()),
                 static_cast<std::streamsize>(indexes.size() * sizeof(uint32_t))))
        Damaged(file, "shorter than its header says");
    const auto* payload = reinterpret_cast<const uint8_t*>(indexes.data());
    if (PayloadChecksum(payload, indexes.size() * sizeof(uint32_t)) != h.m_nChecksum)
        Damaged(file, "checksum");
    if (!std::is_sorted(indexes.begin(), indexes.end()) || (!indexes.empty() && indexes.back() >= nElements))
        Damaged(file, "indexes out of order");
    return indexes;
}

std::unique_ptr<CGlobalStorage> MakeMateIndexedStorage(std::unique_ptr<CGlobalStorage> inner,
                                                       std::vector<uint32_t> indexes) {
    return std::make_unique<CMateIndexedStorage>(std::move(inner), std::move(indexes));
}

}  // namespace moremate
