// The main window's context menus: the description's database links, the progress area of the
// analysis, and the moves list (the variant commands).
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QUrl>

#include "core/chess_exception.h"
#include "main_window.h"
#include "problems/annotations/database_links.h"
#include "problems/annotations/position_search.h"
#include "problems/format/collection_files.h"
#include "texts.h"

namespace moremate::ui {
namespace {

// The commands of the analysis menu that steer a run.
constexpr const char* kSteeringActions[] = {"ctx.movetoend", "ctx.swapnext", "ctx.skip5", "ctx.skipto",
                                            "ctx.skipnext"};

}  // namespace

QAction* TMainWindow::ContextAction(QMenu* menu, const char* id, void (TMainWindow::*run)()) {
    QAction* action = menu->addAction(id);
    action->setObjectName(id);
    connect(action, &QAction::triggered, this, run);
    m_actions[id] = action;
    return action;
}

void TMainWindow::BuildContextMenus() {
    m_pLinkMenu = new QMenu(this);
    ContextAction(m_pLinkMenu, "ctx.openlink", &TMainWindow::OpenLink);
    ContextAction(m_pLinkMenu, "ctx.copylink", &TMainWindow::CopyLink);
    ContextAction(m_pLinkMenu, "ctx.editdesc", &TMainWindow::EditDescription);
    m_pLinks->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_pLinks, &QLabel::linkHovered, this, [this](const QString& link) {
        if (!link.isEmpty()) m_sLink = link;
    });
    connect(m_pLinks, &QLabel::linkActivated, this,
            [](const QString& link) { QDesktopServices::openUrl(link); });
    connect(m_pLinks, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { m_pLinkMenu->popup(m_pLinks->mapToGlobal(at)); });

    m_pAnalysisMenu = new QMenu(this);
    ContextAction(m_pAnalysisMenu, "ctx.copyposition", &TMainWindow::CopyProblem);
    ContextAction(m_pAnalysisMenu, "ctx.copyfen", &TMainWindow::CopyFullFen);
    ContextAction(m_pAnalysisMenu, "ctx.copymoves", &TMainWindow::CopyMoves);
    ContextAction(m_pAnalysisMenu, "ctx.newinstance", &TMainWindow::OpenInNewInstance);
    m_pAnalysisMenu->addSeparator();
    ContextAction(m_pAnalysisMenu, "ctx.movetoend", &TMainWindow::MoveToEndOfAnalysis);
    ContextAction(m_pAnalysisMenu, "ctx.swapnext", &TMainWindow::SwapWithNextMove);
    ContextAction(m_pAnalysisMenu, "ctx.skip5", &TMainWindow::SkipFiveMoves);
    ContextAction(m_pAnalysisMenu, "ctx.skipto", &TMainWindow::SkipToChosenMove);
    ContextAction(m_pAnalysisMenu, "ctx.skipnext", &TMainWindow::SkipMove);
    m_pProgress->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_pProgress, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        for (const char* id : kSteeringActions) m_actions.at(id)->setEnabled(Analysing());
        m_pAnalysisMenu->popup(m_pProgress->mapToGlobal(at));
    });

    // On a move: the move's comment; elsewhere in the list: the variants.
    m_pCommentMenu = new QMenu(this);
    ContextAction(m_pCommentMenu, "ctx.comment", &TMainWindow::CommentPickedMove);
    m_pMoves->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_pMoves, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        const QListWidgetItem* item = m_pMoves->itemAt(at);
        m_nCommentRow = item ? static_cast<size_t>(m_pMoves->row(item)) : 0;
        (item ? m_pCommentMenu : Menu("menu.variant"))->popup(m_pMoves->mapToGlobal(at));
    });
}

// The references of the description as links; hidden when it has none.
void TMainWindow::ShowLinks() {
    QStringList links;
    for (const TDatabaseReference& reference :
         FindDatabaseReferences(m_collection.Current().m_sDescription)) {
        const QString url = QString::fromStdString(DatabaseLink(reference.database, reference.sId));
        links << QString("<a href=\"%1\">%2</a>")
                     .arg(url.toHtmlEscaped(),
                          QString::fromStdString(DescriptionReference(reference)).toHtmlEscaped());
    }
    m_sLink.clear();
    m_pLinks->setText(links.join("&nbsp;&nbsp;"));
    m_pLinks->setVisible(!links.isEmpty());
}

// The link under the mouse, else the description's first.
QString TMainWindow::CurrentLink() const {
    if (!m_sLink.isEmpty()) return m_sLink;
    const auto references = FindDatabaseReferences(m_collection.Current().m_sDescription);
    if (references.empty()) return {};
    return QString::fromStdString(DatabaseLink(references.front().database, references.front().sId));
}

void TMainWindow::OpenLink() {
    const QString link = CurrentLink();
    if (!link.isEmpty()) QDesktopServices::openUrl(QUrl(link));
}

void TMainWindow::FindPosition(ProblemDatabase database) {
    const ProblemEntry& entry = m_collection.Current();
    const std::string link = PositionSearchLink(database, entry.m_position.board, entry.StipulationMoves());
    QDesktopServices::openUrl(QUrl(QString::fromStdString(link), QUrl::StrictMode));
}

void TMainWindow::CopyLink() {
    const QString link = CurrentLink();
    if (!link.isEmpty()) QApplication::clipboard()->setText(link);
}

void TMainWindow::EditDescription() {
    if (m_collection.Size() == 0 || RefuseWhileAnalysing()) return;
    bool ok = false;
    const QString text =
        QInputDialog::getText(this, Title("ctx.editdesc"), Title("ctx.editdesc"), QLineEdit::Normal,
                              QString::fromStdString(m_collection.Current().m_sDescription), &ok);
    if (ok) Edit([&text](ProblemEntry& e) { e.m_sDescription = text.toStdString(); });
}

// The position shown (the last one with White to move) as a problem of its own, in a scratch
// file that a new instance of the program opens.
void TMainWindow::OpenInNewInstance() {
    if (m_collection.Size() == 0) return;
    ProblemEntry entry = m_collection.Current();
    if (m_nShown > 0 && entry.m_type == ProblemType::Directmate) {
        TChessboard board = BoardAfter(m_nShown % 2 == 0 ? m_nShown : m_nShown - 1);
        board.previous = nullptr;
        entry.m_nPlies = std::max(1, static_cast<int>(board.movesLeft));
        board.movesAtStart = board.movesLeft = static_cast<int16_t>(entry.m_nPlies);
        entry.m_position.board = board;
        entry.m_vAnswer.clear();
        entry.m_answerKind = AnswerKind::None;
        entry.m_annotations = {};
    }
    try {
        const std::filesystem::path file = WriteScratchCopy(entry);
        QProcess::startDetached(QApplication::applicationFilePath(), {QString::fromStdString(file.string())});
    } catch (const ChessException& e) {
        ReportError(e.what());
    }
}

}  // namespace moremate::ui
