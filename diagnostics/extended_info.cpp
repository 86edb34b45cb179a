#include "extended_info.h"

#include "engine/state/current_problem.h"
#include "engine/state/solving_run.h"
#include "interface_state.h"

namespace moremate::diagnostics {

namespace {

void Item(CLogBuffer& log, const char* name, unsigned long long value) {
    log.Text(name).Char('=').Unsigned(value).Char('\n');
}

void CopiedItem(CLogBuffer& log, const char* name, size_t (*copy)(char*, size_t)) {
    char text[kCurrentTextCapacity + 24];
    const size_t length = copy(text, sizeof text);
    log.Text(name).Char('=').Text(text, length).Char('\n');
}

}  // namespace

void AppendExtendedInfo(CLogBuffer& log) {
    static const TInterfaceState kNoInterface;
    const TInterfaceState* ui = RegisteredInterfaceState();
    if (ui == nullptr) ui = &kNoInterface;
    log.Line("-----------------------------------");
    log.Line("           Extended Info           ");
    log.Line("-----------------------------------");
    Item(log, "g_bIsCurrentProblemRunningOrFinalizing", g_bIsCurrentProblemRunningOrFinalizing.load());
    Item(log, "g_bRegressionTestsPending", g_bRegressionTestsPending.load());
    Item(log, "g_bRegressionsTestsProcPending", g_bRegressionsTestsProcPending.load());
    Item(log, "AnimateSolutionMove_pending", ui->m_nAnimateSolutionMovePending.load());
    Item(log, "g_bEngineThreadProcRunning", g_bEngineThreadProcRunning.load());
    Item(log, "EngineThreadProc_AuxMate_pending",
         static_cast<unsigned>(g_nEngineThreadProcAuxMatePending.load()));
    Item(log, "EngineThreadProc_BlackMoves_pending",
         static_cast<unsigned>(g_nEngineThreadProcBlackMovesPending.load()));
    Item(log, "g_bBruteForce", g_bBruteForce.load());
    Item(log, "g_bDrawingCurrentChessboard", ui->m_bDrawingCurrentChessboard.load());
    Item(log, "g_bPreparingChessboard", ui->m_bPreparingChessboard.load());
    Item(log, "g_bWMPaintComplete", ui->m_bWMPaintComplete.load());
    Item(log, "g_bWMPaintPending", ui->m_bWMPaintPending.load());
    Item(log, "g_bFirstWMPaintComplete", ui->m_bFirstWMPaintComplete.load());
    Item(log, "g_bCleaningTempReg", g_bCleaningTempReg.load());
    Item(log, "g_bShowWholeSolution", ui->m_bShowWholeSolution.load());
    Item(log, "g_bVariantAnimationPending", ui->m_bVariantAnimationPending.load());
    Item(log, "g_bStopAnimateVariant", ui->m_bStopAnimateVariant.load());
    Item(log, "g_bStopPending", g_bStopPending.load());
    Item(log, "g_bRunning", g_bRunning.load());
    Item(log, "setRunningProblemsIds.size()", RunningProblems().RunningCountWithoutLock());
    Item(log, "setProblemsBeingStoppedIds.size()", RunningProblems().StoppingCountWithoutLock());
    CopiedItem(log, "currentProblem", CopyCurrentProblem);
    CopiedItem(log, "currentChessboard", CopyCurrentChessboard);
}

}  // namespace moremate::diagnostics
