// The main window's engine commands: starting a run of the current problem on the engine
// thread, steering it, showing its progress, and writing its results into the problem.
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QStyle>
#include <QToolButton>

#include "click_button.h"
#include "core/chess_exception.h"
#include "core/notation.h"
#include "crash_dialogs.h"
#include "engine/run/run_texts.h"
#include "engine/search/black_defence.h"
#include "engine/search/mate_search.h"
#include "engine/threads/multithreading_levels.h"
#include "interface_state.h"
#include "library_texts.h"
#include "main_window.h"
#include "options_window.h"
#include "precalc/global/global_registers.h"
#include "problems/annotations/problem_variants.h"
#include "problems/format/problem_moves.h"
#include "problems/solving/solving_task.h"
#include "progress_text.h"
#include "registers/register_statistics.h"
#include "texts.h"

#ifndef MOREMATE_VERSION
#define MOREMATE_VERSION "0.0.0"
#endif

namespace moremate::ui {
namespace {

const char* const kStorageFormIds[] = {"form.diskaccess", "form.twobit", "form.plain", "form.runlength",
                                       "form.randomaccess"};  // in TStorageForm's order

QString Megabytes(uint64_t bytes) {
    return QString::number(bytes / 1048576.0, 'f', 1);
}

QString GlobalStatusText(const TGlobalRegisterStatus& status, int language) {
    QString text = UiText("msg.globalstatus", language)
                       .arg(QString::number(status.m_vLoaded.size()), Megabytes(status.m_nMemoryBytes),
                            Megabytes(status.m_nQuotaBytes), QString::number(status.m_nMateIndexesHeld),
                            QString::number(status.m_nMaxMateIndexes));
    for (const TLoadedRegister& reg : status.m_vLoaded)
        text += "\n" + UiText("msg.globalstatusline", language)
                           .arg(QString::fromStdString(reg.m_sDescription), QString::number(reg.m_nIndexes),
                                UiText(kStorageFormIds[static_cast<int>(reg.m_eForm)], language),
                                Megabytes(reg.m_nMemoryBytes));
    return text;
}

}  // namespace

void TMainWindow::StartRun(bool allSolutions, bool hybrid, bool bruteForce) {
    if (Analysing() || m_collection.Size() == 0) return;
    if (m_options.m_bPromptHeuristics && !m_oRunHeuristics && !ChooseHeuristics()) return;
    if (m_bSettingMode) ToggleSettingMode();
    const ProblemEntry& entry = m_collection.Current();
    TSolveSettings settings = RunSettings();
    settings.userSet = std::exchange(m_oRunHeuristics, std::nullopt);
    settings.noRelaxation = !std::exchange(m_bRunRelaxes, true);
    settings.allSolutions = allSolutions;
    settings.hybrid = hybrid;
    settings.bruteForce = bruteForce;
    settings.autoSave = true;
    try {
        const std::optional<std::string> load = PrepareRunRegister(entry, m_options, m_pRunRegister);
        if (load) Say(QString::fromStdString(*load));
    } catch (const ChessException& e) {
        ReportError(e.what());
        return;
    }
    m_nRunIndex = m_collection.CurrentIndex();
    m_pProgress->setPlainText(Text("label.running"));
    m_sRunSettings = RunSettingsText(bruteForce     ? "mode.brute"
                                     : hybrid       ? "mode.hybrid"
                                     : allSolutions ? "mode.all"
                                                    : "mode.first",
                                     settings.threads, settings.levels);
    m_run.Start(entry, settings, m_options, *m_pRunRegister);
    UpdateRunState();
}

TSolveSettings TMainWindow::RunSettings() const {
    TSolveSettings settings;
    settings.threads = m_nThreads;
    settings.levels = static_cast<int>(DefaultThreadSettings(m_options.m_nMultithreadingLevels).levels);
    settings.observerLevels = std::max(0, static_cast<int>(m_options.m_shObserverLevels));
    settings.solutionDetails = m_options.m_nPrepareSolutionDescription != 0;
    settings.tablebase = m_pTablebase ? &m_pTablebase->LiChess() : nullptr;
    settings.run.reporter = &m_reporter;
    return settings;
}

// Black's best defence in the position shown, reached by White's move made on the board; the
// thorough one also lists every reply with White's mate after it.
void TMainWindow::StartDefence(bool thorough) {
    if (Analysing() || m_collection.Size() == 0) return;
    const TChessboard shown = ShownBoard();
    if (m_nShown == 0 || shown.WhiteToMove()) {
        Inform(Text("msg.nodefence").toStdString());
        return;
    }
    const ProblemEntry entry = m_collection.Current();
    const std::vector<TMove> before(m_vMoves.begin(), m_vMoves.begin() + static_cast<long>(m_nShown) - 1);
    const TMove key = m_vMoves[m_nShown - 1];
    const TOptions options = m_options;
    m_nRunIndex = m_collection.CurrentIndex();
    m_pProgress->setPlainText(Text("label.running"));
    m_sRunSettings = RunSettingsText(thorough ? "mode.thorough" : "mode.defence", 1, 1);
    m_run.StartWork([entry, before, key, options, thorough](CRunControl& control) {
        TSolvingTask task = MakeSolvingTask(entry);
        if (!before.empty()) PlayMovesAfter(task, MoveSequenceText(task.position, before));
        task.position.problem = &task.root;
        TChessboard afterKey;
        MakeMove(task.position, MoveToText(task.position, key), afterKey);
        CRunRegister runRegister(options);
        TSearchEnvironment env;
        env.store = &runRegister;
        env.stop = control.StopFlag();
        env.control = &control;
        TMateSearch search(env);
        TProblemReport report;
        report.problem = entry.m_nNumber;
        report.result = "defence";
        try {
            const TDefence defence = FindBlackDefence(search, afterKey);
            report.outcome = "Thread looking for black's defence in problem " +
                             std::to_string(entry.m_nNumber) + "\n" + DefenceText(afterKey, defence);
            if (thorough) report.outcome.append("\n").append(EveryReplyText(afterKey, defence));
        } catch (const TSearchStopped&) {
            report.result = "stopped";
            report.outcome = kAnalysisStoppedText;
        }
        return report;
    });
    UpdateRunState();
}

void TMainWindow::SolveAndShowVariant() {
    if (Analysing()) return;
    Solve();
    InterfaceState().m_bShowWholeSolution = Analysing();
}

void TMainWindow::StartOrStop() {
    Analysing() ? StopRun() : Solve();
}

void TMainWindow::StopRun() {
    if (!Analysing()) return;
    m_run.Stop();
    Say(kStopPendingText);
}

void TMainWindow::PauseRun() {
    if (Analysing()) m_run.Pause();
    UpdateRunState();
}

void TMainWindow::PauseOneThread() {
    if (Analysing()) m_run.HoldOneThread();
    UpdateRunState();
}

QString TMainWindow::RunSettingsText(const char* mode, int threads, int levels) const {
    const ProblemEntry& entry = m_collection.Current();
    const auto yesNo = [this](bool yes) { return Text(yes ? "label.yes" : "label.no"); };
    return Text("label.runsettings")
        .arg(QString::number(entry.m_nNumber), QString::number(entry.StipulationMoves()), Text(mode),
             QString::number(threads), QString::number(levels),
             QString::number(std::max(0, static_cast<int>(m_options.m_shObserverLevels))),
             yesNo(m_options.m_bQuickMode), yesNo(m_options.m_bUseGlobalRules),
             yesNo(m_options.m_shLichessLevels > 0));
}

void TMainWindow::ShowRunSettings() {
    Inform((Analysing() ? m_sRunSettings : Text("msg.norun")).toStdString());
}

void TMainWindow::ResumeRun() {
    if (Analysing()) m_run.Resume();
    UpdateRunState();
}

void TMainWindow::SkipMoves(size_t count) {
    if (Analysing() && !m_run.Skip(count)) Inform(kSkipFailedText);
}

void TMainWindow::MoveToEndOfAnalysis() {
    if (Analysing() && !m_run.MoveToEnd()) Inform(kReorderFailedText);
}

void TMainWindow::SwapWithNextMove() {
    if (Analysing() && !m_run.SwapWithNext()) Inform(kReorderFailedText);
}

void TMainWindow::SkipToChosenMove() {
    if (!Analysing()) return;
    const std::vector<TWaitingMove> waiting = m_run.WaitingFirstMoves();
    if (waiting.empty()) {
        Inform(kSkipFailedText);
        return;
    }
    QStringList texts;
    for (const TWaitingMove& move : waiting) texts << QString::fromStdString(move.text);
    bool ok = false;
    const QString chosen =
        QInputDialog::getItem(this, Title("ctx.skipto"), Text("label.waitingmoves"), texts, 0, false, &ok);
    if (!ok || !Analysing()) return;
    if (!m_run.SkipTo(waiting[static_cast<size_t>(texts.indexOf(chosen))].move)) Inform(kSkipFailedText);
}

void TMainWindow::ShowProgress(const TRunProgress& progress) {
    if (!Analysing()) return;
    m_pProgress->setPlainText(
        ProgressAreaText(progress, TGlobalRegisters::Instance().MemoryBytes(), m_nLanguage, m_nPeek));
    ShowRegisterCount();
}

// The keys go into the record's answer when it has none, and the main line of the first key
// becomes its main variant.
void TMainWindow::WriteResult(ProblemEntry& entry, const TProblemReport& report) const {
    if (report.result != "solved") return;
    const TChessboard& start = entry.m_position.board;
    if (entry.m_answerKind == AnswerKind::None && !report.keysLong.empty()) {
        entry.m_answerKind = AnswerKind::Full;
        for (const std::string& key : report.keysLong) {
            TChessboard child;
            entry.m_vAnswer.push_back(MakeMove(start, key, child));
        }
    }
    if (report.mainLine.empty() || !entry.m_vMoves.empty()) return;
    TVariants variants = ReadVariants(entry).variants;
    variants[kMainVariantName] = ReadMoveSequence(report.mainLine, start);
    WriteVariants(entry, variants);
}

void TMainWindow::RunFinished(const TProblemReport& report) {
    UpdateRunState();
    ShowRegisterCount();
    QString text = QString::fromStdString(LibraryText(report.outcome, m_nLanguage)).trimmed();
    if (!report.keysLong.empty()) {
        QStringList keys;
        for (const std::string& key : report.keysLong) keys << QString::fromStdString(key);
        text += "\n" + keys.join(", ") + "\n" + QString::fromStdString(report.mainLine);
    }
    if (report.error) {
        ReportError(*report.error);
        text += "\n" + QString::fromStdString(LibraryText(*report.error, m_nLanguage));
    }
    report.result == kToolResult ? m_pProgress->appendPlainText(text) : m_pProgress->setPlainText(text);
    if (m_nRunIndex < m_collection.Size()) {
        ProblemEntry entry = m_collection.At(m_nRunIndex);
        try {
            WriteResult(entry, report);
        } catch (const ChessException& e) {
            Say(e.what());
        }
        m_collection.Set(m_nRunIndex, entry);
        if (m_collection.CurrentIndex() == m_nRunIndex && !m_bSettingMode) {
            ShowProblem();
            if (InterfaceState().m_bShowWholeSolution) ShowMainVariant();
        }
    }
    InterfaceState().m_bShowWholeSolution = false;
    UpdateTitle();
    if (report.result == "defence") m_reporter.Report(kResultOfAnalysisTitle, report.outcome);
    if (report.result == kToolResult) Inform(report.outcome);
    if (report.result == "no solution")
        m_reporter.Report(kResultOfAnalysisTitle,
                          NoSolutionText(static_cast<int>(report.msec / 1000), false));
    Say(QString::fromStdString(report.outcome).section('\n', 1, 1));
    Q_EMIT AnalysisFinished();
}

void TMainWindow::UpdateRunState() {
    const bool running = Analysing();
    m_pStart->setIcon(style()->standardIcon(running ? QStyle::SP_MediaStop : QStyle::SP_MediaPlay));
    for (const char* id : {"prob.stop", "prob.pause", "prob.pauseone", "prob.resume", "prob.skip"})
        m_actions.at(id)->setEnabled(running);
    for (const char* id :
         {"prob.solve", "prob.all", "prob.hybrid", "prob.brute", "prob.defence", "prob.thorough"})
        m_actions.at(id)->setEnabled(!running);
    m_pDescription->setReadOnly(running);
    Say(running ? (m_run.Paused() ? Title("prob.pause") : Text("label.running")) : Text("label.ready"));
}

void TMainWindow::ClearRegister() {
    if (Analysing()) {
        Inform(kSaveRefusedText);
        return;
    }
    m_pRunRegister.reset();
    ShowRegisterCount();
}

// The register's counters are atomic: they are read while the engine fills it.
void TMainWindow::ShowRegisterCount() {
    const uint64_t count = m_pRunRegister ? uint64_t{m_pRunRegister->WhiteToMove().ElementCount()} +
                                                m_pRunRegister->BlackToMove().ElementCount()
                                          : 0;
    m_pRegisterCount->setText(QString::number(count));
}

void TMainWindow::RegisterStatus() {
    if (!m_pRunRegister) return Inform(Text("msg.noregister").toStdString());
    if (Analysing()) return Inform(kToolUnavailableText);
    Inform(Text("msg.whitetomove").toStdString() + "\n" + RegisterStatistics(m_pRunRegister->WhiteToMove()) +
           "\n\n" + Text("msg.blacktomove").toStdString() + "\n" +
           RegisterStatistics(m_pRunRegister->BlackToMove()));
}

void TMainWindow::GlobalRegisterStatus() {
    Inform(GlobalStatusText(TGlobalRegisters::Instance().Status(), m_nLanguage).toStdString());
}

void TMainWindow::ShowOptions() {
    TOptionsWindow dialog(m_options, m_nThreads, m_nLanguage, m_reporter, this);
    dialog.exec();
}

void TMainWindow::About() {
    QMessageBox::about(this, Title("help.about"), Text("msg.about").arg(MOREMATE_VERSION));
}

void TMainWindow::TestCrash() {
    if (const auto kind = AskTestCrash(this, Title("help.crashtest"), Text("label.crashkind")))
        diagnostics::ProvokeCrash(*kind);
}

void TMainWindow::ChooseThreads() {
    bool ok = false;
    const int threads = QInputDialog::getInt(this, Text("label.threads"), Text("label.threads"), m_nThreads,
                                             1, kMaxThreads, 1, &ok);
    if (ok) SetThreads(threads);
}

}  // namespace moremate::ui
