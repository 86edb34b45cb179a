// The main window's commands on a problem's annotations: the heuristics chosen for a run, the
// tags, the sort indications and the named variants (stored, shown, animated, renamed, deleted).
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include "core/chess_exception.h"
#include "engine/heuristics/heuristic_text.h"
#include "heuristics_window.h"
#include "main_window.h"
#include "problems/annotations/problem_tags.h"
#include "problems/annotations/problem_variants.h"
#include "problems/annotations/sort_indications.h"
#include "problems/annotations/variant_commands.h"
#include "problems/format/collection_reader.h"
#include "problems/solving/problem_heuristics.h"
#include "texts.h"

namespace moremate::ui {
namespace {

constexpr int kAnimationStepMs = 800;

QStringList Names(const TVariants& variants) {
    QStringList names;
    for (const auto& [name, moves] : variants) names << QString::fromStdString(name);
    return names;
}

QStringList Texts(const std::vector<std::string>& texts) {
    QStringList list;
    for (const std::string& text : texts) list << QString::fromStdString(text);
    return list;
}

}  // namespace

bool TMainWindow::ChooseHeuristics() {
    THeuristicSet set;
    try {
        set = EngineHeuristics(m_collection.Current());
    } catch (const ChessException& e) {
        ReportError(e.what());
        return false;
    }
    THeuristicsWindow dialog(set, m_collection.Current().m_position.board, m_oPreviousHeuristics, m_nLanguage,
                             m_reporter, this);
    if (dialog.exec() != QDialog::Accepted) return false;
    m_oRunHeuristics = m_oPreviousHeuristics = dialog.Chosen();
    m_bRunRelaxes = dialog.Relaxes();
    return true;
}

void TMainWindow::SolveWithHeuristics() {
    if (!RefuseWhileAnalysing() && m_collection.Size() > 0 && ChooseHeuristics())
        StartRun(false, false, false);
}

void TMainWindow::SolveAllWithHeuristics() {
    if (!RefuseWhileAnalysing() && m_collection.Size() > 0 && ChooseHeuristics())
        StartRun(true, false, false);
}

void TMainWindow::ShowAnnotations() {
    const ProblemEntry& entry = m_collection.Current();
    QStringList parts;
    if (!Tags(entry).empty()) parts << Text("label.tags").arg(Texts(Tags(entry)).join(", "));
    if (entry.m_annotations.sSortIndications)
        parts << Text("label.sortind").arg(QString::fromStdString(*entry.m_annotations.sSortIndications));
    m_pAnnotations->setText(parts.join("   "));
    m_pAnnotations->setVisible(!parts.isEmpty());
}

std::vector<ProblemEntry> TMainWindow::AllEntries() const {
    std::vector<ProblemEntry> entries;
    for (size_t i = 0; i < m_collection.Size(); ++i) entries.push_back(m_collection.At(i));
    return entries;
}

void TMainWindow::AddTagCommand() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    bool ok = false;
    const QString tag = QInputDialog::getItem(this, Title("prob.addtag"), Text("tag.addprompt"),
                                              Texts(CollectionTags(AllEntries())), 0, true, &ok);
    if (!ok || tag.trimmed().isEmpty()) return;
    const std::vector<ProblemEntry> all = AllEntries();
    Edit([&](ProblemEntry& e) {
        AddTagAsking(e, tag.trimmed().toStdString(), all, {&m_reporter, m_nLanguage});
    });
}

void TMainWindow::RemoveTagCommand() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    const TUserQuestions questions{&m_reporter, m_nLanguage};
    const std::vector<std::string>& tags = Tags(m_collection.Current());
    if (tags.empty()) {
        ProblemEntry entry = m_collection.Current();
        RemoveTagAsking(entry, "", questions);  // says that there is none
        return;
    }
    bool ok = false;
    const QString tag = QInputDialog::getItem(this, Title("prob.removetag"), Text("tag.removeprompt"),
                                              Texts(tags), 0, false, &ok);
    if (ok) Edit([&](ProblemEntry& e) { RemoveTagAsking(e, tag.toStdString(), questions); });
}

// Every problem here whose position a problem of the other file holds gets that problem's tags.
void TMainWindow::AppendTagsCommand() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    const QString name =
        QFileDialog::getOpenFileName(this, Title("prob.appendtags"), QString(), Text("filter.cp"));
    if (name.isEmpty()) return;
    std::vector<ProblemEntry> other;
    try {
        ReadCollectionFile(name.toStdString(), other, false, {{&m_reporter, m_nLanguage}, {}});
    } catch (const ChessException& e) {
        ReportError(name.toStdString() + ": " + e.what());
        return;
    }
    int added = 0;
    for (size_t i = 0; i < m_collection.Size(); ++i) {
        ProblemEntry entry = m_collection.At(i);
        for (const ProblemEntry& source : other)
            if (source.m_position == entry.m_position)
                for (const std::string& tag : Tags(source)) added += AddTag(entry, tag);
        m_collection.Set(i, entry);
    }
    ShowProblem();
    Say(Text("label.tagsadded").arg(added));
}

void TMainWindow::EditSortIndications() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    const std::optional<std::string>& now = m_collection.Current().m_annotations.sSortIndications;
    bool ok = false;
    const QString text =
        QInputDialog::getText(this, Title("adv.sortind"), Text("label.sortindprompt"), QLineEdit::Normal,
                              QString::fromStdString(now.value_or("")), &ok)
            .trimmed();
    if (!ok) return;
    std::optional<std::string> line;
    try {
        if (!text.isEmpty())
            line = SortIndicationsText(ParseSortIndications(text.toStdString(), m_nLanguage));
    } catch (const ChessException& e) {
        ReportError(e.what());
        return;
    }
    Edit([&line](ProblemEntry& e) { e.m_annotations.sSortIndications = line; });
}

std::optional<std::string> TMainWindow::AskVariantName(const QString& title, bool editable) {
    const QStringList names = Names(ReadVariants(m_collection.Current()).variants);
    if (!editable && names.isEmpty()) {
        Inform(Text("msg.novariants").toStdString());
        return std::nullopt;
    }
    bool ok = false;
    const QString name = QInputDialog::getItem(this, title, Text("var.nameprompt"), names, 0, editable, &ok);
    if (!ok || name.trimmed().isEmpty()) return std::nullopt;
    return name.trimmed().toStdString();
}

void TMainWindow::SaveVariantAs() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    if (m_nShown == 0) return Inform(Text("msg.nomoves").toStdString());
    const std::optional<std::string> name = AskVariantName(Title("var.saveas"), true);
    if (!name) return;
    const std::vector<TMove> moves(m_vMoves.begin(), m_vMoves.begin() + static_cast<long>(m_nShown));
    Edit([&](ProblemEntry& e) { StoreVariant(e, *name, moves, {&m_reporter, m_nLanguage}); });
}

void TMainWindow::ShowVariant() {
    StopAnimation();
    const std::optional<std::string> name = AskVariantName(Title("var.show"), false);
    if (!name) return;
    m_vMoves = ReadVariants(m_collection.Current()).variants.at(*name);
    m_nShown = m_vMoves.size();
    ShowBoard();
}

void TMainWindow::Animate(const std::vector<TMove>& moves) {
    StopAnimation();
    m_vMoves = moves;
    m_nShown = 0;
    ShowBoard();
    if (!m_pAnimation) {
        m_pAnimation = new QTimer(this);
        connect(m_pAnimation, &QTimer::timeout, this, [this] {
            if (m_nShown >= m_vMoves.size()) return StopAnimation();
            ++m_nShown;
            ShowBoard();
        });
    }
    m_pAnimation->start(kAnimationStepMs);
}

void TMainWindow::AnimateMainVariant() {
    const TVariants variants = ReadVariants(m_collection.Current()).variants;
    const auto main = variants.find(kMainVariantName);
    if (main == variants.end()) return Inform(Text("msg.novariants").toStdString());
    Animate(main->second);
}

void TMainWindow::AnimateVariant() {
    if (const std::optional<std::string> name = AskVariantName(Title("var.animate"), false))
        Animate(ReadVariants(m_collection.Current()).variants.at(*name));
}

void TMainWindow::StopAnimation() {
    if (m_pAnimation) m_pAnimation->stop();
}

void TMainWindow::RenameVariantCommand() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    const std::optional<std::string> from = AskVariantName(Title("var.rename"), false);
    if (!from) return;
    bool ok = false;
    const QString to = QInputDialog::getText(this, Title("var.rename"), Text("var.newname"),
                                             QLineEdit::Normal, QString::fromStdString(*from), &ok)
                           .trimmed();
    if (ok && !to.isEmpty())
        Edit([&](ProblemEntry& e) { RenameVariant(e, *from, to.toStdString(), {&m_reporter, m_nLanguage}); });
}

void TMainWindow::DeleteVariantCommand() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    if (const std::optional<std::string> name = AskVariantName(Title("var.delete"), false))
        Edit([&](ProblemEntry& e) { DeleteVariant(e, *name, {&m_reporter, m_nLanguage}); });
}

}  // namespace moremate::ui
