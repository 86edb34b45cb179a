#include "engine_run.h"

#include <QCoreApplication>

#include "core/thread_start.h"

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
    // A report of the run may wait for the interface thread: keep serving it until the run ends.
    while (!m_bEnded) QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    if (m_thread.joinable()) m_thread.join();  // unless Join has run meanwhile
}

void CEngineRun::Start(const ProblemEntry& entry, TSolveSettings settings, const TOptions& options,
                       CRunRegister& runRegister) {
    settings.run.onProgress = [this](const TRunProgress& progress) { Q_EMIT Progressed(progress); };
    StartWork([entry, settings, options, &runRegister](CRunControl& control) {
        TSolveSettings own = settings;
        own.run.control = &control;
        return SolvePreparedProblem(entry, own, options, runRegister, nullptr);
    });
}

void CEngineRun::StartWork(FWork work) {
    m_pControl = std::make_unique<CRunControl>();
    m_bEnded = false;
    m_thread = StartThread([this, work = std::move(work)] {
        TProblemReport report;
        try {
            report = work(*m_pControl);
        } catch (const std::exception& e) {
            report.result = "error";
            report.error = e.what();
        }
        Q_EMIT Ended(report);
        m_bEnded = true;
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

void CEngineRun::HoldOneThread() {
    if (m_pControl) m_pControl->HoldOneThread();
}

bool CEngineRun::Paused() const {
    return m_pControl && m_pControl->Paused();
}

bool CEngineRun::Skip(size_t count) {
    return m_pControl && m_pControl->Skip(count);
}

bool CEngineRun::MoveToEnd() {
    return m_pControl && m_pControl->MoveToEnd();
}

bool CEngineRun::SwapWithNext() {
    return m_pControl && m_pControl->SwapWithNext();
}

bool CEngineRun::SkipTo(const TMove& move) {
    return m_pControl && m_pControl->SkipTo(move);
}

std::vector<TWaitingMove> CEngineRun::WaitingFirstMoves() const {
    return m_pControl ? m_pControl->WaitingFirstMoves() : std::vector<TWaitingMove>{};
}

}  // namespace moremate::ui
