// The main window's search commands: finding problems by a query, choosing one from a list,
// similar positions, and removing the problems another file holds.
#include <QFileDialog>
#include <QInputDialog>

#include "core/chess_exception.h"
#include "main_window.h"
#include "problem_list_dialog.h"
#include "problem_search.h"
#include "problems/format/collection_reader.h"
#include "texts.h"

namespace moremate::ui {

bool TMainWindow::FindProblem(const QString& query, bool forward) {
    m_sFindQuery = query.toStdString();
    bool found = true;  // stays so when the user keeps a running analysis's problem
    Navigate([this, forward, &found](TProblemCollection& c) {
        found = c.Find(m_sFindQuery, forward);
        return found;
    });
    if (!found) Inform(Text(forward ? "msg.notfoundafter" : "msg.notfoundbefore").arg(query).toStdString());
    return found;
}

void TMainWindow::FindCommand() {
    if (m_collection.Size() == 0) return;
    bool ok = false;
    const QString query = QInputDialog::getText(this, Title("prob.find"), Text("label.find"),
                                                QLineEdit::Normal, QString::fromStdString(m_sFindQuery), &ok);
    if (ok && !query.trimmed().isEmpty()) FindProblem(query, true);
}

void TMainWindow::FindNext() {
    if (m_sFindQuery.empty()) return FindCommand();
    FindProblem(QString::fromStdString(m_sFindQuery), true);
}

void TMainWindow::FindPrevious() {
    if (m_sFindQuery.empty()) return FindCommand();
    FindProblem(QString::fromStdString(m_sFindQuery), false);
}

void TMainWindow::GoToChosen(const QString& title, const std::vector<size_t>& indexes) {
    const std::optional<size_t> chosen =
        ChooseProblem(this, title, m_collection.Entries(), indexes, m_collection.CurrentIndex());
    if (chosen) Navigate([index = *chosen](TProblemCollection& c) { return c.GoTo(index); });
}

void TMainWindow::SelectFromList() {
    if (m_collection.Size() == 0) return;
    std::vector<size_t> all(m_collection.Size());
    for (size_t i = 0; i < all.size(); ++i) all[i] = i;
    GoToChosen(Title("prob.list"), all);
}

void TMainWindow::SimilarPositions() {
    if (m_collection.Size() == 0) return;
    const std::vector<size_t> similar = SimilarProblems(m_collection.Entries(), m_collection.CurrentIndex());
    if (similar.empty()) return Inform(Text("msg.nosimilar").toStdString());
    GoToChosen(Title("prob.similar"), similar);
}

size_t TMainWindow::RemovePresentIn(const std::filesystem::path& file) {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return 0;
    std::vector<ProblemEntry> others;
    try {
        ReadCollectionFile(file, others, false, {{&m_reporter, m_nLanguage}, {}});
    } catch (const ChessException& e) {
        ReportError(file.string() + ": " + e.what());
        return 0;
    }
    const size_t removed = m_collection.RemovePresentIn(others);
    if (removed > 0) {
        m_history.Clear();
        ShowProblem();
    }
    Inform(Text("msg.removed").arg(removed).toStdString());
    return removed;
}

void TMainWindow::RemovePresentElsewhere() {
    if (RefuseWhileAnalysing()) return;
    const QString name =
        QFileDialog::getOpenFileName(this, Title("file.remove"), QString(), Text("filter.cp"));
    if (!name.isEmpty()) RemovePresentIn(name.toStdString());
}

}  // namespace moremate::ui
