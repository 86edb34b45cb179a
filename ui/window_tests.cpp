// The main window's regression tests (full and quick) of the open collection and scripts of tests.
// Like the long tools on the precalculated data (window_precalc.cpp) each runs on the engine thread
// as an analysis does, refused while another runs; its lines reach the progress area as they come
// and its summary a message box at the end.
#include <fmt/format.h>

#include <QFileDialog>
#include <QPlainTextEdit>

#include "main_window.h"
#include "problems/regression/regression_test.h"
#include "problems/regression/script.h"
#include "problems/regression/solved_problems_db.h"
#include "settings/program_folder.h"
#include "texts.h"

namespace moremate::ui {
namespace {

std::string TestSummary(const TRegressionTestResult& result, int language) {
    return UiText(result.bAnyFailed ? "msg.regressionfailed" : "msg.regressionok", language).toStdString() +
           "\n" + result.logFile.string();
}

}  // namespace

bool TMainWindow::RefuseTool() {
    if (m_bScriptRunning || Analysing()) {
        Inform(Text(m_bScriptRunning ? "msg.scriptrunning" : "msg.solvingpending").toStdString());
        return true;
    }
    return m_collection.Size() == 0;
}

void TMainWindow::StartTool(const std::function<std::string(CRunControl&)>& work,
                            const std::function<void()>& done) {
    m_nRunIndex = m_collection.CurrentIndex();
    m_pProgress->clear();
    m_run.StartWork([work](CRunControl& control) {
        TProblemReport report;
        report.result = kToolResult;
        report.outcome = work(control);
        return report;
    });
    if (done) connect(&m_run, &CEngineRun::Finished, this, done, Qt::SingleShotConnection);
    UpdateRunState();
}

void TMainWindow::StartRegressionTest(bool quick) {
    if (RefuseTool()) return;
    const std::string question = ReportTitle(ReportKind::Question, m_nLanguage);
    if (!quick && m_reporter.Report(question, Text("msg.regressionquestion").toStdString(),
                                    ReportButtons::YesNo) != ReportAnswer::Yes)
        return;
    TRegressionTestSettings settings;
    settings.bShort = quick;
    settings.databaseFolder = ProgramFolder() / kSolvedProblemsFolder;
    if (RunInLoop(m_options, {&m_reporter, m_nLanguage})) settings.nLoops = kUntilStopped;
    const std::vector<ProblemEntry> entries = AllEntries();
    const std::filesystem::path file = m_collection.File();
    StartTool([run = &m_run, settings, entries, file, solve = RunSettings(), options = m_options,
               language = m_nLanguage](CRunControl& control) {
        TRegressionTestSettings own = settings;
        own.stopped = [&control] { return control.StoppedByUser(); };
        TSolveSettings ownSolve = solve;
        ownSolve.run.control = &control;
        return TestSummary(RunRegressionTest(entries, file, own, ownSolve, options,
                                             [run](const std::string& line) { run->Say(line); }),
                           language);
    });
}

void TMainWindow::RunScript() {
    if (RefuseTool()) return;
    const QString name =
        QFileDialog::getOpenFileName(this, Title("adv.script"), QString(), Text("filter.vrs"));
    if (name.isEmpty()) return;
    m_bScriptRunning = true;
    StartTool(
        [run = &m_run, name = name.toStdString(), solve = RunSettings(), options = m_options,
         language = m_nLanguage](CRunControl& control) {
            TScriptEnvironment environment{
                options, solve, {}, {}, [run](const std::string& line) { run->Say(line); }};
            environment.solve.run.control = &control;
            environment.testSettings.databaseFolder = ProgramFolder() / kSolvedProblemsFolder;
            environment.testSettings.stopped = [&control] { return control.StoppedByUser(); };
            const TScriptResult result = RunScriptFile(name, environment);
            return UiText(result.bAnyFailed ? "msg.scriptfailed" : "msg.scriptok", language).toStdString();
        },
        [this] { m_bScriptRunning = false; });
}

}  // namespace moremate::ui
