#include "run_autosave.h"

#include "engine/heuristics/heuristic_text.h"
#include "registers/register_file.h"
#include "settings/program_folder.h"

namespace moremate {
namespace {

TAutoSaveDescriptor Descriptor(const ProblemEntry& entry, const TPassState& start, bool userHeuristics,
                               const TOptions& options) {
    TAutoSaveDescriptor descriptor;
    descriptor.m_sDescription = entry.m_sDescription.substr(0, kMaxDescriptionLength);
    descriptor.m_nHeuristicsOnStart = start.set.mask;
    descriptor.m_bHeuristicsOnStartSelectedByUser = userHeuristics;
    descriptor.m_sHeuristicsOnStartString = HeuristicSetText(start.set, {start.quickMode && !start.safeMode});
    descriptor.m_nMaxMemRatioForPrecalculatedData = options.m_nMaxMemRatioForPrecalculatedData;
    descriptor.m_nMaxMemRatioPerProblem = options.m_nMaxMemRatioForTempReg;
    return descriptor;
}

}  // namespace

std::unique_ptr<CRegisterAutoSave> StartRunAutoSave(const ProblemEntry& entry, const TPassState& start,
                                                    bool userHeuristics, const TOptions& options,
                                                    CRunRegister& runRegister) {
    if (options.m_nAutoSaveMinutes <= 0) return nullptr;
    TAutoSaveSettings settings{options.m_nAutoSaveMinutes, options.m_nAutoSaveMB, true,
                               ProgramFolder() / kSavedRegisterFolder};
    auto autoSave = std::make_unique<CRegisterAutoSave>(std::move(settings),
                                                        Descriptor(entry, start, userHeuristics, options));
    autoSave->Attach(runRegister.WhiteToMove(), &runRegister.BlackToMove());
    return autoSave;
}

}  // namespace moremate
