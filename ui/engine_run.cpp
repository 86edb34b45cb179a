#include "engine_run.h"

#include "core/chess_exception.h"

namespace moremate::ui {

CEngineRun::CEngineRun(QObject* parent) : QObject(parent) {
    qRegisterMetaType<TRunProgress>();
    qRegisterMetaType<TProblemReport>();
    // Emitted on the engine thread, received here on the interface thread.
    connect(this, &CEngineRun::Ended, this, &CEngineRun::Join, Qt::QueuedConnection);
}

CEngineRun::~CEngineRun() {
    if (!m_thread.joinable()) return;
    m_pControl->Stop();
    m_thread.join();
}

void CEngineRun::Start(const ProblemEntry& entry, TSolveSettings settings, const TOptions& options,
                       CRunRegister& runRegister) {
    m_pControl = std::make_unique<CRunControl>();
    settings.run.control = m_pControl.get();
    settings.run.onProgress = [this](const TRunProgress& progress) { Q_EMIT Progressed(progress); };
    m_thread = std::thread([this, entry, settings, options, &runRegister] {
        TProblemReport report;
        report.problem = entry.m_nNumber;
        try {
            report = SolvePreparedProblem(entry, settings, options, runRegister, nullptr);
        } catch (const ChessException& e) {
            report.result = "error";
            report.error = e.what();
        } catch (const std::exception& e) {
            report.result = "error";
            report.error = e.what();
        }
        Q_EMIT Ended(report);
    });
}

void CEngineRun::Join(TProblemReport report) {
    if (m_thread.joinable()) m_thread.join();
    Q_EMIT Finished(report);
}

void CEngineRun::Stop() {
    if (m_pControl) m_pControl->Stop();
}

void CEngineRun::Pause() {
    if (m_pControl) m_pControl->Pause();
}

void CEngineRun::Resume() {
    if (m_pControl) m_pControl->Resume();
}

bool CEngineRun::Paused() const {
    return m_pControl && m_pControl->Paused();
}

bool CEngineRun::Skip() {
    return m_pControl && m_pControl->Skip();
}

}  // namespace moremate::ui
