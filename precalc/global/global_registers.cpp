#include "global_registers.h"

#include <fmt/format.h>

#include <mutex>

#include "core/chess_exception.h"
#include "precalc/global/data_file.h"

namespace moremate {
namespace {

// The kinds in the order they are looked for: random-access buffers first when preferred.
std::vector<TStorageKind> KindsToTry(const TGlobalRegisterSettings& s) {
    std::vector<TStorageKind> kinds = {TStorageKind::kLz4, TStorageKind::kRunLength, TStorageKind::kTwoBit,
                                       TStorageKind::kPlain};
    const std::vector<TStorageKind> packed = {TStorageKind::kPackedLzw, TStorageKind::kPackedLz4};
    kinds.insert(s.m_nUseDataPackedForRandomAccess > 0 ? kinds.begin() : kinds.end(), packed.begin(),
                 packed.end());
    return kinds;
}

// The memory a file's form takes once loaded.
uint64_t LoadedBytes(const TDataFileHeader& h, bool bDiskAccess) {
    if (h.m_kind == TStorageKind::kPlain) return bDiskAccess ? 0 : h.m_nPayloadBytes;
    if (h.m_kind == TStorageKind::kLz4) return h.m_nElements * h.m_nElementSize;
    return h.m_nPayloadBytes;
}

std::string DescriptionOfFileName(const std::string& name) {
    const size_t end = name.find(".precalc");
    if (end == std::string::npos || name.ends_with(".tmp")) return "";
    std::string description;
    for (size_t i = 0; i < end; ++i)
        if (name[i] != '_') description += name[i];
    return description;
}

}  // namespace

TGlobalRegisterSettings TGlobalRegisterSettings::FromOptions(const TOptions& options) {
    TGlobalRegisterSettings s;
    s.m_dataFolder = PrecalcDataFolder(options.m_sPrecalcPath);
    s.m_bForceDiskAccess = options.m_bGlobalRegisterForceDiskAccess;
    s.m_nUseDataPackedForRandomAccess = options.m_byUseDataPackedForRandomAccess;
    s.m_nQuotaBytes = options.PrecalcQuotaBytes();
    return s;
}

uint32_t MaterialKey(const TChessboard& b) {
    const uint8_t counts[] = {b.whiteQueens, b.whiteRooks, b.whiteBishops, b.whiteKnights, b.whitePawns,
                              b.blackQueens, b.blackRooks, b.blackBishops, b.blackKnights, b.blackPawns};
    uint32_t key = 1, pieces = 2;
    for (const uint8_t n : counts) {
        pieces += n;
        key = key * 8 + n;
    }
    return pieces > kMaxPrecalcPieces ? 0 : key;
}

TGlobalRegisters& TGlobalRegisters::Instance() {
    static TGlobalRegisters s_registers;
    return s_registers;
}

void TGlobalRegisters::Configure(const TGlobalRegisterSettings& settings, CReporter* reporter) {
    std::unique_lock lock(m_lock);
    m_settings = settings;
    m_pReporter = reporter;
    m_registers.clear();
    m_failed.clear();
    m_byMaterial.clear();
}

TGlobalRegister* TGlobalRegisters::Find(const TChessboard& position) {
    const uint32_t key = MaterialKey(position);
    if (key == 0 || !m_settings.m_bEnabled) return nullptr;
    {
        std::shared_lock lock(m_lock);
        const auto found = m_byMaterial.find(key);
        if (found != m_byMaterial.end()) return found->second;
    }
    const std::optional<TPrecalcType> type = TPrecalcType::OfPosition(position.squares);
    TGlobalRegister* reg = type ? Find(*type) : nullptr;
    std::unique_lock lock(m_lock);
    m_byMaterial[key] = reg;
    return reg;
}

TGlobalRegister* TGlobalRegisters::Find(const TPrecalcType& type) {
    {
        std::shared_lock lock(m_lock);
        const auto found = m_registers.find(type.Description());
        if (found != m_registers.end()) return found->second.get();
        if (m_failed.contains(type.Description())) return nullptr;
    }
    return Load(type);
}

TGlobalRegister& TGlobalRegisters::Require(const TPrecalcType& type) {
    TGlobalRegister* reg = Find(type);
    if (!reg) throw ChessException(kNoGlobalRegisterText + type.Description());
    return *reg;
}

TGlobalRegister& TGlobalRegisters::Add(std::unique_ptr<TGlobalRegister> reg) {
    std::unique_lock lock(m_lock);
    const std::string description = reg->Type().Description();
    m_failed.erase(description);
    m_byMaterial.clear();
    auto& slot = m_registers[description];
    slot = std::move(reg);
    return *slot;
}

std::filesystem::path TGlobalRegisters::FileToLoad(const TPrecalcType& type) const {
    if (m_settings.m_dataFolder.empty()) return {};  // not configured: no data
    for (const TStorageKind kind : KindsToTry(m_settings)) {
        const std::filesystem::path file = TypeFile(m_settings.m_dataFolder, type, kind);
        std::error_code error;
        if (std::filesystem::is_regular_file(file, error)) return file;
    }
    return {};
}

std::unique_ptr<CGlobalStorage> TGlobalRegisters::ReadWithinQuota(const TPrecalcType& type,
                                                                  const std::filesystem::path& file) {
    const uint64_t elements = TypeIndexCount(type);
    const TDataFileHeader h = ReadDataFileHeader(file, type.Description(), elements);
    if (MemoryBytes() + LoadedBytes(h, m_settings.m_bForceDiskAccess) > m_settings.m_nQuotaBytes) {
        if (m_pReporter) m_pReporter->Report("Warning", kQuotaExceededText);
        return nullptr;
    }
    return ReadDataFile(file, type.Description(), elements, m_settings.m_bForceDiskAccess);
}

TGlobalRegister* TGlobalRegisters::Load(const TPrecalcType& type) {
    const std::filesystem::path file = FileToLoad(type);
    std::unique_ptr<CGlobalStorage> storage;
    try {
        if (!file.empty()) storage = ReadWithinQuota(type, file);
    } catch (const ChessException& e) {
        if (m_pReporter) m_pReporter->Report("Error", e.what());
    }
    std::unique_lock lock(m_lock);
    const auto found = m_registers.find(type.Description());
    if (found != m_registers.end()) return found->second.get();
    if (!storage) {
        m_failed.insert(type.Description());
        return nullptr;
    }
    auto& slot = m_registers[type.Description()];
    slot = std::make_unique<TGlobalRegister>(type, std::move(storage));
    return slot.get();
}

std::set<std::string> TGlobalRegisters::TypesOnDisk() const {
    std::set<std::string> types;
    if (m_settings.m_dataFolder.empty()) return types;
    for (const char* top : {"Precalc", "CustomPrecalc"}) {
        std::error_code error;
        for (auto it = std::filesystem::recursive_directory_iterator(m_settings.m_dataFolder / top, error);
             !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
            if (!it->is_regular_file()) continue;
            const std::string description = DescriptionOfFileName(it->path().filename().string());
            if (!description.empty()) types.insert(description);
        }
    }
    return types;
}

uint64_t TGlobalRegisters::MemoryBytes() const {
    std::shared_lock lock(m_lock);
    uint64_t bytes = 0;
    for (const auto& [description, reg] : m_registers) bytes += reg->MemoryBytes();
    return bytes;
}

void TGlobalRegisters::Count(bool bKnown, bool bMate) {
    m_nLookups.fetch_add(1, std::memory_order_relaxed);
    std::atomic<uint64_t>& counter = !bKnown ? m_nUnknown : (bMate ? m_nMates : m_nNoMates);
    counter.fetch_add(1, std::memory_order_relaxed);
}

TGlobalRegisterCounts TGlobalRegisters::Counts() const {
    return {m_nLookups.load(), m_nMates.load(), m_nNoMates.load(), m_nUnknown.load()};
}

std::string TGlobalRegisters::StatusText() const {
    const uint64_t memory = MemoryBytes();
    std::shared_lock lock(m_lock);
    std::string text =
        fmt::format("Global register: {} position type(s) loaded, {:.1f} MB of {:.1f} MB quota\n",
                    m_registers.size(), memory / 1048576.0, m_settings.m_nQuotaBytes / 1048576.0);
    for (const auto& [description, reg] : m_registers)
        text += fmt::format("  {}: {} indexes, {}, {:.1f} MB\n", description, reg->Storage().ElementCount(),
                            StorageFormName(reg->Storage().Form()), reg->MemoryBytes() / 1048576.0);
    return text;
}

}  // namespace moremate
