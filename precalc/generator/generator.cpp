#include "generator.h"

#include <fmt/format.h>

#include <chrono>

#include "core/chess_exception.h"
#include "precalc/generator/available_memory.h"
#include "precalc/generator/type_generator.h"
#include "precalc/global/data_file.h"
#include "precalc/global/mate_index_file.h"

namespace moremate {
namespace {

// Checked before each type, once the types it leads to are loaded: what it takes at most (see
// PeakBytes, and the data written out) against the memory the system has available.
void CheckMemory(const TPrecalcType& type) {
    const uint64_t needed = CTypeGenerator::PeakBytes(type) + 2 * TypeIndexCount(type);
    const uint64_t available = AvailableMemoryBytes();
    if (needed > available)
        throw ChessException(fmt::format("Not enough memory to generate {}: {} MB needed, {} MB available",
                                         type.Description(), needed >> 20, available >> 20));
}

TGlobalRegister& Generate(TGlobalRegisters& registers, const TPrecalcType& type,
                          const TGenerationOptions& options, TGenerationReport& report) {
    CheckMemory(type);
    const auto start = std::chrono::steady_clock::now();
    std::unique_ptr<CGlobalStorage> plain =
        MakePlainStorage(CTypeGenerator(type, registers, options).Run(report), 1);
    if (options.m_bWriteFiles) {
        const std::filesystem::path folder = registers.Settings().m_dataFolder;
        std::filesystem::create_directories(folder / TypeFolderName(type));
        const TStorageKind kind = options.m_kind;
        const bool asPlain = kind == TStorageKind::kPlain || kind == TStorageKind::kLz4;
        WriteDataFile(TypeFile(folder, type, kind), type.Description(),
                      asPlain ? *plain : *MakeStorageOfKind(kind, plain->Payload()), kind);
        WriteMateIndexFile(MateIndexFile(folder, type), type.Description(), *plain);
    }
    report.m_dSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    report.m_nPeakBytes = CTypeGenerator::PeakBytes(type);
    report.m_bGenerated = true;
    return registers.Add(std::make_unique<TGlobalRegister>(type, std::move(plain)));
}

}  // namespace

void ThrowIfGenerationStopped(const TGenerationOptions& options) {
    if (options.m_pStop && options.m_pStop->load(std::memory_order_relaxed))
        throw ChessException(kGenerationStoppedText);
}

TGlobalRegister& EnsureTypeData(TGlobalRegisters& registers, const TPrecalcType& type,
                                const TGenerationOptions& options,
                                const std::function<void(const TGenerationReport&)>& done) {
    if (!options.m_bRegenerate) {
        if (TGlobalRegister* reg = registers.Find(type)) return *reg;
    }
    TGenerationOptions smaller = options;
    smaller.m_bRegenerate = false;
    for (const TPrecalcType& next : type.Successors())
        if (!next.WhiteBare()) EnsureTypeData(registers, next, smaller, done);
    ThrowIfGenerationStopped(options);
    TGenerationReport report;
    report.m_sDescription = type.Description();
    TGlobalRegister& reg = Generate(registers, type, options, report);
    if (done) done(report);
    return reg;
}

}  // namespace moremate
