// The loaded global registers of the process, one per position type, found by a position's
// material. Types are loaded from their files when first asked for, in the form the options
// choose, within the memory quota of precalculated data.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "precalc/global/global_register.h"
#include "settings/options.h"
#include "settings/reporter.h"

namespace moremate {

inline constexpr const char* kNoGlobalRegisterText = "No global register found for position type ";
inline constexpr const char* kQuotaExceededText =
    "Cannot load subregister: memory quota for data generation exceeded";

struct TGlobalRegisterSettings {
    std::filesystem::path m_dataFolder;  // holds "Precalc/" and "CustomPrecalc/"
    bool m_bForceDiskAccess = true;
    int m_nUseDataPackedForRandomAccess = 2;
    uint64_t m_nQuotaBytes = 0;
    bool m_bEnabled = true;
    // The most indexes read from ".idx" files and held in front of slow forms (disk access,
    // run-length blocks), over all types; a type whose list would go beyond it goes without.
    uint64_t m_nMaxMateIndexes = 0;
    // A file packed less than this level (see recompress.h) is offered for recompression on loading.
    int m_nAskForRecompression = 0;

    static TGlobalRegisterSettings FromOptions(const TOptions& options);
};

struct TGlobalRegisterCounts {
    uint64_t m_nLookups = 0;
    uint64_t m_nMates = 0;    // nodes settled as mate within their half-moves
    uint64_t m_nNoMates = 0;  // nodes settled as no mate within them
    uint64_t m_nUnknown = 0;
};

// A loaded type as the status shows it.
struct TLoadedRegister {
    std::string m_sDescription;
    uint64_t m_nIndexes = 0;
    TStorageForm m_eForm = TStorageForm::kPlain;
    uint64_t m_nMemoryBytes = 0;
};

struct TGlobalRegisterStatus {
    std::vector<TLoadedRegister> m_vLoaded;  // by description
    uint64_t m_nMemoryBytes = 0;
    uint64_t m_nQuotaBytes = 0;
    uint64_t m_nMateIndexesHeld = 0;
    uint64_t m_nMaxMateIndexes = 0;
};

class TGlobalRegisters {
  public:
    // The process's registers (the search, the command line and the generator share them).
    static TGlobalRegisters& Instance();

    TGlobalRegisters() = default;
    TGlobalRegisters(const TGlobalRegisters&) = delete;
    TGlobalRegisters& operator=(const TGlobalRegisters&) = delete;

    // Drops every register and reads files from the new settings from then on.
    void Configure(const TGlobalRegisterSettings& settings, CReporter* reporter);
    const TGlobalRegisterSettings& Settings() const { return m_settings; }

    // The register of the position's material, loaded when first asked for; without data of the
    // standard type, the first custom type of the material on disk that holds the position (its
    // pieces where the type lets them stand); null when none.
    TGlobalRegister* Find(const TChessboard& position);
    TGlobalRegister* Find(const TPrecalcType& type);
    // Throws ChessException kNoGlobalRegisterText + description when there is none.
    TGlobalRegister& Require(const TPrecalcType& type);
    // Takes a register made in memory (the generator's), replacing one of the same type.
    TGlobalRegister& Add(std::unique_ptr<TGlobalRegister> reg);
    // The types whose files lie in the data folder ("Precalc" and "CustomPrecalc" below it, or
    // only the one named), by description.
    std::set<std::string> TypesOnDisk(const char* only = nullptr) const;
    // The file of a type that loading would read, or an empty path (no file, or the type switched
    // off by a "_SKIPTHIS" file).
    std::filesystem::path FileToLoad(const TPrecalcType& type) const;

    uint64_t MemoryBytes() const;
    // Counted by the search: a look-up and how it settled the node (mate or no mate within the
    // node's half-moves), or that the data did not know.
    void Count(bool bKnown, bool bMate);
    TGlobalRegisterCounts Counts() const;
    // The loaded types with form, indexes and memory, and the quota; StatusText words it in English.
    TGlobalRegisterStatus Status() const;
    std::string StatusText() const;

  private:
    // The registers of a material: the standard type's and those of custom types on disk.
    struct TMaterialRegisters {
        TGlobalRegister* pStandard = nullptr;
        std::vector<TGlobalRegister*> vCustom;
    };
    TMaterialRegisters LoadMaterial(const TPrecalcType& standard);
    // The standard type's register, else the first custom one whose squares hold the position.
    static TGlobalRegister* Holding(const TMaterialRegisters& material, const TChessboard& position);
    TGlobalRegister* Load(const TPrecalcType& type);
    // The file to read: `file`, or the one it was recompressed into when the question was answered
    // yes. Failures are reported and leave `file`.
    std::filesystem::path OfferRecompression(const TPrecalcType& type, const std::filesystem::path& file);
    std::unique_ptr<CGlobalStorage> ReadWithinQuota(const TPrecalcType& type,
                                                    const std::filesystem::path& file);
    // The storage with the type's list of non-zero indexes in front, when the form is slow, the
    // ".idx" file is there and the list fits the bound; `nHeld` gets the list's length.
    std::unique_ptr<CGlobalStorage> WithMateIndex(const TPrecalcType& type,
                                                  std::unique_ptr<CGlobalStorage> storage, uint64_t& nHeld);

    TGlobalRegisterSettings m_settings;
    CReporter* m_pReporter = nullptr;
    mutable std::shared_mutex m_lock;
    std::map<std::string, std::unique_ptr<TGlobalRegister>> m_registers;
    std::set<std::string> m_failed;  // no data, or data that cannot be loaded
    std::unordered_map<uint32_t, TMaterialRegisters> m_byMaterial;
    std::atomic<uint64_t> m_nMateIndexesHeld{0};
    std::atomic<uint64_t> m_nLookups{0}, m_nMates{0}, m_nNoMates{0}, m_nUnknown{0};
};

// A key of the position's material (counts per piece kind), 0 with more pieces than any type has.
uint32_t MaterialKey(const TChessboard& position);

}  // namespace moremate
