#include "global_registers.h"

#include <fmt/format.h>

#include <mutex>
#include <string_view>

#include "core/chess_exception.h"
#include "precalc/global/data_file.h"
#include "precalc/global/mate_index_file.h"
#include "precalc/global/recompress.h"
#include "precalc/types/precalc_files.h"

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
    if (end == std::string::npos || name.ends_with(".tmp") || name.find(kSkipThisSuffix) != std::string::npos)
        return "";
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
    s.m_nMaxMateIndexes = static_cast<uint64_t>(std::max(0, options.m_nMaxMateIndexesCache));
    s.m_nAskForRecompression = options.m_byAskForGlobalRegisterRecompression;
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
    m_nMateIndexesHeld = 0;
}

TGlobalRegister* TGlobalRegisters::Find(const TChessboard& position) {
    const uint32_t key = MaterialKey(position);
    if (key == 0 || !m_settings.m_bEnabled) return nullptr;
    {
        std::shared_lock lock(m_lock);
        const auto found = m_byMaterial.find(key);
        if (found != m_byMaterial.end()) return Holding(found->second, position);
    }
    const std::optional<TPrecalcType> type = TPrecalcType::OfPosition(position.squares);
    TMaterialRegisters material = type ? LoadMaterial(*type) : TMaterialRegisters{};
    std::unique_lock lock(m_lock);
    return Holding(m_byMaterial[key] = std::move(material), position);
}

TGlobalRegister* TGlobalRegisters::Holding(const TMaterialRegisters& material, const TChessboard& position) {
    if (material.pStandard) return material.pStandard;
    for (TGlobalRegister* custom : material.vCustom)
        if (custom->Type().ContainsPosition(position.squares)) return custom;
    return nullptr;
}

TGlobalRegisters::TMaterialRegisters TGlobalRegisters::LoadMaterial(const TPrecalcType& standard) {
    TMaterialRegisters material;
    material.pStandard = Find(standard);
    if (material.pStandard) return material;
    for (const std::string& description : TypesOnDisk(kCustomPrecalcFolder)) {
        try {
            const TPrecalcType custom = TPrecalcType::Parse(description, true);
            if (!(custom.Standard() == standard)) continue;
            if (TGlobalRegister* reg = Find(custom)) material.vCustom.push_back(reg);
        } catch (const ChessException&) {
            // a file name that is no type's: not data of this material
        }
    }
    return material;
}

TGlobalRegister* TGlobalRegisters::Find(const TPrecalcType& type) {
    {
        std::shared_lock lock(m_lock);
        const auto found = m_registers.find(type.Key());
        if (found != m_registers.end()) return found->second.get();
        if (m_failed.contains(type.Key())) return nullptr;
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
    const std::string key = reg->Type().Key();
    m_failed.erase(key);
    m_byMaterial.clear();
    auto& slot = m_registers[key];
    slot = std::move(reg);
    return *slot;
}

std::filesystem::path TGlobalRegisters::FileToLoad(const TPrecalcType& type) const {
    if (m_settings.m_dataFolder.empty()) return {};  // not configured: no data
    if (IsSwitchedOff(m_settings.m_dataFolder, type)) return {};
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

std::unique_ptr<CGlobalStorage> TGlobalRegisters::WithMateIndex(const TPrecalcType& type,
                                                                std::unique_ptr<CGlobalStorage> storage,
                                                                uint64_t& nHeld) {
    const std::filesystem::path file = MateIndexFile(m_settings.m_dataFolder, type);
    std::error_code error;
    if ((storage->Form() != TStorageForm::kDiskAccess && storage->Form() != TStorageForm::kRunLength) ||
        !std::filesystem::is_regular_file(file, error))
        return storage;
    try {
        const uint64_t elements = storage->ElementCount();
        const TMateIndexHeader header = ReadMateIndexHeader(file, type.Description(), elements);
        const uint64_t n = header.m_nIndexes;
        uint64_t held = m_nMateIndexesHeld.load();
        do {
            if (held + n > m_settings.m_nMaxMateIndexes) return storage;
        } while (!m_nMateIndexesHeld.compare_exchange_weak(held, held + n));
        nHeld = n;
        std::vector<uint32_t> indexes = ReadMateIndexFile(file, header, elements);
        return MakeMateIndexedStorage(std::move(storage), std::move(indexes));
    } catch (const ChessException& e) {
        m_nMateIndexesHeld -= nHeld;
        nHeld = 0;
        if (m_pReporter) m_pReporter->Report("Error", e.what());
    }
    return storage;
}

std::filesystem::path TGlobalRegisters::OfferRecompression(const TPrecalcType& type,
                                                           const std::filesystem::path& file) {
    const int asked = m_settings.m_nAskForRecompression;
    if (asked == 0 || !m_pReporter) return file;
    try {
        const TDataFileHeader h = ReadDataFileHeader(file, type.Description(), TypeIndexCount(type));
        if (PackingLevel(h.m_kind) >= asked) return file;
        const char* form = StorageName(KindForPackingLevel(asked));
        const std::string text = fmt::format(
            "The precalculated data {} are stored as {}, packed less than "
            "AskForGlobalRegisterRecompression={} "
            "asks ({}); \"moremate precalc recompress {} --form {}\" rewrites them. {}",
            file.string(), StorageName(h.m_kind), asked, form, type.Description(), form,
            kRecompressionQuestion);
        if (m_pReporter->Report("Question", text, ReportButtons::YesNo) != ReportAnswer::Yes) return file;
        return RecompressTypeData(m_settings.m_dataFolder, type, file, KindForPackingLevel(asked));
    } catch (const ChessException& e) {
        m_pReporter->Report("Error", e.what());
    }
    return file;
}

TGlobalRegister* TGlobalRegisters::Load(const TPrecalcType& type) {
    std::filesystem::path file = FileToLoad(type);
    if (!file.empty()) file = OfferRecompression(type, file);
    std::unique_ptr<CGlobalStorage> storage;
    uint64_t held = 0;
    try {
        if (!file.empty()) storage = ReadWithinQuota(type, file);
    } catch (const ChessException& e) {
        if (m_pReporter) m_pReporter->Report("Error", e.what());
    }
    if (storage) storage = WithMateIndex(type, std::move(storage), held);
    std::unique_lock lock(m_lock);
    const auto found = m_registers.find(type.Key());
    if (found != m_registers.end()) {
        m_nMateIndexesHeld -= held;  // another thread loaded the type first
        return found->second.get();
    }
    if (!storage) {
        m_failed.insert(type.Key());
        return nullptr;
    }
    auto& slot = m_registers[type.Key()];
    slot = std::make_unique<TGlobalRegister>(type, std::move(storage));
    return slot.get();
}

std::set<std::string> TGlobalRegisters::TypesOnDisk(const char* only) const {
    std::set<std::string> types;
    if (m_settings.m_dataFolder.empty()) return types;
    for (const char* top : {kPrecalcFolder, kCustomPrecalcFolder}) {
        if (only && std::string_view(only) != top) continue;
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

TGlobalRegisterStatus TGlobalRegisters::Status() const {
    TGlobalRegisterStatus status;
    status.m_nMemoryBytes = MemoryBytes();
    std::shared_lock lock(m_lock);
    status.m_nQuotaBytes = m_settings.m_nQuotaBytes;
    status.m_nMateIndexesHeld = m_nMateIndexesHeld.load();
    status.m_nMaxMateIndexes = m_settings.m_nMaxMateIndexes;
    for (const auto& [description, reg] : m_registers)
        status.m_vLoaded.push_back(
            {description, reg->Storage().ElementCount(), reg->Storage().Form(), reg->MemoryBytes()});
    return status;
}

std::string TGlobalRegisters::StatusText() const {
    const TGlobalRegisterStatus status = Status();
    std::string text = fmt::format(
        "Global register: {} position type(s) loaded, {:.1f} MB of {:.1f} MB quota, {} of {} mate "
        "indexes held\n",
        status.m_vLoaded.size(), status.m_nMemoryBytes / 1048576.0, status.m_nQuotaBytes / 1048576.0,
        status.m_nMateIndexesHeld, status.m_nMaxMateIndexes);
    for (const TLoadedRegister& reg : status.m_vLoaded)
        text += fmt::format("  {}: {} indexes, {}, {:.1f} MB\n", reg.m_sDescription, reg.m_nIndexes,
                            StorageFormName(reg.m_eForm), reg.m_nMemoryBytes / 1048576.0);
    return text;
}

}  // namespace moremate
