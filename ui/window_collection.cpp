// The main window's collection commands: opening and saving files, and moving between problems.
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include "core/chess_exception.h"
#include "main_window.h"
#include "problems/format/collection_files.h"
#include "settings/program_folder.h"
#include "texts.h"

#ifndef MOREMATE_SAMPLES_DIR
#define MOREMATE_SAMPLES_DIR "samples"
#endif

namespace moremate::ui {
namespace {

constexpr const char* kDefaultCollection = "myChessProblems.cp";
constexpr const char* kSampleCollection = "sample_problems.cp";

// The sample collection beside the program, else the one of the source tree it was built from.
std::filesystem::path SampleCollectionPath() {
    const std::filesystem::path beside = ProgramFolder() / "samples" / kSampleCollection;
    if (std::filesystem::exists(beside)) return beside;
    return std::filesystem::path(MOREMATE_SAMPLES_DIR) / kSampleCollection;
}

}  // namespace

std::filesystem::path TMainWindow::DefaultCollectionPath() {
    return ProgramFolder() / kDefaultCollection;
}

bool TMainWindow::OpenCollection(const std::filesystem::path& file) {
    bool opened = false;
    try {
        m_collection.Open(file, TUserQuestions{&m_reporter, m_nLanguage});
        opened = true;
    } catch (const ChessException& e) {
        ReportError(file.string() + ": " + e.what());
        opened = m_collection.File() == file;  // the records before a fault are shown
    }
    if (!opened) return false;
    m_history.Clear();
    ShowProblem();
    return true;
}

bool TMainWindow::OpenDefaultCollection() {
    const std::filesystem::path file = DefaultCollectionPath();
    try {
        if (!std::filesystem::exists(file) && !CreateNewCollection(file, {&m_reporter, m_nLanguage}))
            return false;
    } catch (const ChessException& e) {
        ReportError(e.what());
        return false;
    }
    return OpenCollection(file);
}

void TMainWindow::NewFile() {
    if (RefuseWhileAnalysing() || !MayDropChanges()) return;
    const QString name = QFileDialog::getSaveFileName(this, Title("file.new"), QString(), Text("filter.cp"),
                                                      nullptr, QFileDialog::DontConfirmOverwrite);
    if (name.isEmpty()) return;
    const std::filesystem::path file = name.toStdString();
    try {
        if (!CreateNewCollection(file, {&m_reporter, m_nLanguage})) return;
    } catch (const ChessException& e) {
        ReportError(e.what());
        return;
    }
    OpenCollection(file);
}

void TMainWindow::OpenDefault() {
    if (RefuseWhileAnalysing() || !MayDropChanges()) return;
    OpenDefaultCollection();
}

void TMainWindow::OpenSample() {
    if (RefuseWhileAnalysing() || !MayDropChanges()) return;
    OpenCollection(SampleCollectionPath());
}

void TMainWindow::OpenFile() {
    if (RefuseWhileAnalysing() || !MayDropChanges()) return;
    const QString name = QFileDialog::getOpenFileName(this, Title("file.open"), QString(), Text("filter.cp"));
    if (!name.isEmpty()) OpenCollection(name.toStdString());
}

void TMainWindow::Save() {
    try {
        m_collection.Save();
        Say(Text("label.saved").arg(QString::fromStdString(m_collection.File().string())));
    } catch (const ChessException& e) {
        ReportError(e.what());
    }
    UpdateTitle();
}

void TMainWindow::SaveAs() {
    const QString name =
        QFileDialog::getSaveFileName(this, Title("file.saveas"), QString(), Text("filter.cp"));
    if (name.isEmpty()) return;
    try {
        m_collection.SaveAs(name.toStdString());
        Say(Text("label.saved").arg(name));
    } catch (const ChessException& e) {
        ReportError(e.what());
    }
    UpdateTitle();
}

void TMainWindow::AppendFile() {
    if (RefuseWhileAnalysing()) return;
    const QString name =
        QFileDialog::getOpenFileName(this, Title("file.append"), QString(), Text("filter.cp"));
    if (name.isEmpty()) return;
    try {
        m_collection.Append(name.toStdString(), {&m_reporter, m_nLanguage});
    } catch (const ChessException& e) {
        ReportError(name.toStdString() + ": " + e.what());
    }
    ShowProblem();
}

void TMainWindow::Navigate(const std::function<bool(TProblemCollection&)>& move) {
    if (m_collection.Size() == 0 || !MayLeaveProblem()) return;
    if (move(m_collection)) {
        m_history.Clear();
        ShowProblem();
    }
}

void TMainWindow::NextProblem() {
    Navigate([](TProblemCollection& c) { return c.Next(); });
}

void TMainWindow::PreviousProblem() {
    Navigate([](TProblemCollection& c) { return c.Previous(); });
}

void TMainWindow::FirstProblem() {
    Navigate([](TProblemCollection& c) { return c.First(); });
}

void TMainWindow::LastProblem() {
    Navigate([](TProblemCollection& c) { return c.Last(); });
}

void TMainWindow::HistoryBack() {
    Navigate([](TProblemCollection& c) { return c.GoBack(); });
}

void TMainWindow::HistoryForward() {
    Navigate([](TProblemCollection& c) { return c.GoForward(); });
}

void TMainWindow::NewProblem() {
    if (RefuseWhileAnalysing()) return;
    m_collection.AddProblem();
    m_history.Clear();
    ShowProblem();
}

bool TMainWindow::SelectProblemNumber(uint32_t number) {
    bool found = true;
    Navigate([&found, number](TProblemCollection& c) {
        found = c.GoToNumber(number);
        return found;
    });
    if (!found) Inform(Text("msg.noproblem").arg(number).toStdString());
    return found;
}

void TMainWindow::SelectNumber() {
    if (m_collection.Size() == 0) return;
    bool ok = false;
    const int number =
        QInputDialog::getInt(this, Title("prob.select"), Text("label.number"),
                             static_cast<int>(m_collection.Current().m_nNumber), 0, 2147483646, 1, &ok);
    if (ok) SelectProblemNumber(static_cast<uint32_t>(number));
}

}  // namespace moremate::ui
