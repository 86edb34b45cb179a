#include "verification.h"

#include <fmt/format.h>

#include <fstream>
#include <mutex>

#include "core/fen.h"
#include "precalc/generator/lookahead.h"
#include "precalc/generator/parallel_for.h"
#include "precalc/generator/progress_line.h"

namespace moremate {
namespace {

constexpr size_t kFaultsKept = 1000;

struct CRegisterSource {
    const TGlobalRegister& m_reg;
    uint8_t White(uint64_t i) const { return Read(i); }
    uint8_t Black(uint64_t i) const { return Read(m_reg.Type().PlacementCount() + i); }
    uint8_t Read(uint64_t i) const {
        const uint16_t v = m_reg.Storage().Element(i);
        return v >= kEscapes ? 0 : static_cast<uint8_t>(v);
    }
};

}  // namespace

TVerificationReport VerifyTypeData(TGlobalRegisters& registers, TGlobalRegister& reg, unsigned threads,
                                   bool bProgress) {
    const TPrecalcType& type = reg.Type();
    CRegisterSource source{reg};
    COtherTypes others(registers);
    CLookahead<CRegisterSource> lookahead(type, source, others);
    CGeneratorProgress progress(bProgress);
    TVerificationReport report;
    std::mutex lock;
    std::atomic<uint64_t> done{0};
    const uint64_t placements = type.PlacementCount();
    ParallelFor(2 * placements, threads, [&](uint64_t begin, uint64_t end, unsigned) {
        TChessboard board;
        for (uint64_t i = begin; i < end; ++i) {
            const bool white = i < placements;
            const uint8_t stored = white ? source.White(i) : source.Black(i - placements);
            uint8_t expected = 0;
            if (SetUpPlacement(type, i % placements, white, board)) {
                expected = white ? lookahead.WhiteValue(board, kNoLimit)
                                 : lookahead.BlackValue(board, kNoLimit, false);
                if (expected == kEscapes) expected = 0;
            }
            if (stored == expected) continue;
            std::lock_guard guard(lock);
            if (++report.m_nFaults <= kFaultsKept)
                report.m_vFaults.push_back(fmt::format("{} {} index {}: stored {}, expected {}",
                                                       WriteFenPlacement(board), white ? 'w' : 'b', i, stored,
                                                       expected));
        }
        progress.Show(fmt::format("{}: verifying {}%", type.Description(),
                                  100 * (done += end - begin) / (2 * placements)));
    });
    report.m_nChecked = 2 * placements;
    if (report.m_nFaults == 0) return report;
    report.m_faultFile =
        TypeFile(registers.Settings().m_dataFolder, type, TStorageKind::kPlain).string() + ".faults.txt";
    std::ofstream out(report.m_faultFile);
    for (const std::string& fault : report.m_vFaults) out << fault << '\n';
    if (report.m_nFaults > kFaultsKept) out << "... " << report.m_nFaults - kFaultsKept << " more\n";
    return report;
}

}  // namespace moremate
