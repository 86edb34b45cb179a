#include "main_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "board_widget.h"
#include "click_button.h"
#include "engine/run/run_texts.h"
#include "instance_notice.h"
#include "library_texts.h"
#include "piece_palette.h"
#include "problems/solving/tablebase_access.h"
#include "settings/machine.h"
#include "texts.h"

namespace moremate::ui {

TMainWindow::TMainWindow(const TOptions& options, CReporter& reporter, QWidget* parent)
    : QMainWindow(parent),
      m_options(options),
      m_libraryReporter(reporter, options.m_nLanguageId),
      m_reporter(m_libraryReporter),
      m_nLanguage(options.m_nLanguageId),
      m_nThreads(static_cast<int>(LogicalProcessorCount())) {
    BuildLayout();
    BuildMenus();
    BuildToolBar();
    BuildContextMenus();
    BuildSystemMenus();
    BuildTray();
    connect(&m_run, &CEngineRun::Progressed, this, &TMainWindow::ShowProgress);
    connect(&m_run, &CEngineRun::Finished, this, &TMainWindow::RunFinished);
    connect(&m_run, &CEngineRun::Said, this, [this](const QString& line) {
        const QString said = QString::fromStdString(LibraryText(line.toStdString(), m_nLanguage));
        m_pProgress->appendPlainText(said.endsWith('\n') ? said.chopped(1) : said);
    });
    Relabel();
    UpdateRunState();
    resize(1000, 720);
    m_pTablebaseReporter = std::make_unique<CInstanceNoticeFilter>(
        m_reporter, options.m_nWarnAboutSecondInstanceOfProgram,
        [this](const std::string& text) { Say(QString::fromStdString(text)); });
    m_pTablebase = TablebaseForRuns(options, *m_pTablebaseReporter);
}

TMainWindow::~TMainWindow() {
    m_run.disconnect(this);  // a run still ending reports to nobody: the widgets are going
}

void TMainWindow::BuildLayout() {
    auto* central = new QWidget(this);
    auto* columns = new QHBoxLayout(central);

    auto* left = new QVBoxLayout;
    auto* top = new QHBoxLayout;
    m_pNumber = new TClickButton(central);
    m_pNumber->setAutoRaise(true);
    connect(m_pNumber, &QToolButton::clicked, this, &TMainWindow::SelectNumber);
    connect(m_pNumber, &TClickButton::RightClicked, this, &TMainWindow::SelectFromList);
    m_tips[m_pNumber] = "tip.number";
    m_pDescription = new QLineEdit(central);
    m_tips[m_pDescription] = "tip.description";
    connect(m_pDescription, &QLineEdit::editingFinished, this, [this] {
        const std::string text = m_pDescription->text().toStdString();
        if (text == m_collection.Current().m_sDescription) return;
        if (RefuseWhileAnalysing()) return ShowProblem();
        Edit([&text](ProblemEntry& e) { e.m_sDescription = text; });
    });
    top->addWidget(m_pNumber);
    top->addWidget(m_pDescription, 1);
    auto* up = new TClickButton(central);
    up->setArrowType(Qt::UpArrow);
    auto* down = new TClickButton(central);
    down->setArrowType(Qt::DownArrow);
    m_tips[up] = m_tips[down] = "tip.stipulation";
    connect(up, &QToolButton::clicked, this, &TMainWindow::StipulationUp);
    connect(down, &QToolButton::clicked, this, &TMainWindow::StipulationDown);
    connect(up, &TClickButton::RightClicked, this, &TMainWindow::StipulationUp10);
    connect(down, &TClickButton::RightClicked, this, &TMainWindow::StipulationDown10);
    m_pStipulation = new QLabel(central);
    QFont big = m_pStipulation->font();
    big.setPointSize(big.pointSize() + 4);
    big.setBold(true);
    m_pStipulation->setFont(big);
    m_pStipulation->setMinimumWidth(48);
    m_pStipulation->setAlignment(Qt::AlignCenter);
    auto* arrows = new QVBoxLayout;
    arrows->setSpacing(0);
    arrows->addWidget(up);
    arrows->addWidget(down);
    top->addWidget(m_pStipulation);
    top->addLayout(arrows);
    left->addLayout(top);
    m_pLinks = new QLabel(central);
    m_pLinks->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    m_pLinks->hide();
    left->addWidget(m_pLinks);
    m_pAnnotations = new QLabel(central);
    m_pAnnotations->setWordWrap(true);
    left->addWidget(m_pAnnotations);

    m_pBoard = new TBoardWidget(central);
    m_tips[m_pBoard] = "tip.board";
    connect(m_pBoard, &TBoardWidget::SquareClicked, this, &TMainWindow::ClickSquare);
    connect(m_pBoard, &TBoardWidget::PieceDropped, this, &TMainWindow::DropPiece);
    left->addWidget(m_pBoard, 1);
    m_pPalette = new TPiecePalette(central);
    m_pPalette->hide();
    left->addWidget(m_pPalette);
    columns->addLayout(left, 3);

    auto* right = new QVBoxLayout;
    m_pMovesTitle = new QLabel(central);
    m_pMoves = new QListWidget(central);
    m_pProgressTitle = new QLabel(central);
    m_pProgress = new QPlainTextEdit(central);
    m_pProgress->setReadOnly(true);
    m_pProgress->setFont(QFont("DejaVu Sans Mono"));
    m_pProgress->setMaximumHeight(140);
    right->addWidget(m_pMovesTitle);
    right->addWidget(m_pMoves, 1);
    right->addWidget(m_pProgressTitle);
    right->addWidget(m_pProgress);
    columns->addLayout(right, 2);
    setCentralWidget(central);
    statusBar();
}

QString TMainWindow::Text(const char* id) const {
    return UiText(id, m_nLanguage);
}

QString TMainWindow::Title(const char* id) const {
    return Text(id).section('\t', 0, 0).remove('&');
}

QAction* TMainWindow::Action(const std::string& id) const {
    const auto it = m_actions.find(id);
    return it == m_actions.end() ? nullptr : it->second;
}

std::vector<QAction*> TMainWindow::Actions() const {
    std::vector<QAction*> actions;
    for (const auto& [id, action] : m_actions) actions.push_back(action);
    return actions;
}

QMenu* TMainWindow::Menu(const std::string& id) const {
    const auto it = m_menus.find(id);
    return it == m_menus.end() ? nullptr : it->second;
}

QString TMainWindow::ProgressText() const {
    return m_pProgress->toPlainText();
}

QString TMainWindow::StatusText() const {
    return statusBar()->currentMessage();
}

void TMainWindow::SetLanguage(int language) {
    m_nLanguage = language;
    m_libraryReporter.SetLanguage(language);
    m_options.m_nLanguageId = language;
    Relabel();
}

void TMainWindow::Relabel() {
    for (const auto& [id, menu] : m_menus) menu->setTitle(Text(id.c_str()));
    for (const auto& [id, action] : m_actions) action->setText(Text(id.c_str()));
    for (const auto& [widget, id] : m_tips) {
        if (auto* w = qobject_cast<QWidget*>(widget)) w->setToolTip(Text(id.c_str()));
        if (auto* a = qobject_cast<QAction*>(widget)) a->setToolTip(Text(id.c_str()));
    }
    m_pMovesTitle->setText(Text("label.moves"));
    m_pProgressTitle->setText(Text("label.progress"));
    if (m_collection.Size() > 0) ShowProblemHeader();  // the moves made on the board stay
    Say(Text(Analysing() ? "label.running" : "label.ready"));
}

void TMainWindow::Say(const QString& text) {
    statusBar()->showMessage(QString::fromStdString(LibraryText(text.toStdString(), m_nLanguage)));
}

void TMainWindow::Inform(const std::string& text) {
    m_reporter.Report(ReportTitle(ReportKind::Information, m_nLanguage), text);
}

void TMainWindow::ReportError(const std::string& text) {
    m_reporter.Report(ReportTitle(ReportKind::Error, m_nLanguage), text);
}

void TMainWindow::UpdateTitle() {
    const QString file = QString::fromStdString(m_collection.File().filename().string());
    setWindowTitle(QString("moremate - %1%2").arg(file, m_collection.Modified() ? " *" : ""));
}

bool TMainWindow::RefuseWhileAnalysing() {
    if (!Analysing()) return false;
    Inform(Text("msg.refused").toStdString());
    return true;
}

bool TMainWindow::MayLeaveProblem() {
    if (!Analysing()) return true;
    if (m_reporter.Report(ReportTitle(ReportKind::Question, m_nLanguage), Text("msg.leave").toStdString(),
                          ReportButtons::YesNo) != ReportAnswer::Yes)
        return false;
    m_run.Stop();
    return true;
}

bool TMainWindow::MayDropChanges() {
    if (m_collection.Size() == 0 || !m_collection.Modified()) return true;
    const ReportAnswer answer =
        m_reporter.Report(ReportTitle(ReportKind::Question, m_nLanguage),
                          Text("msg.saveChanges").toStdString(), ReportButtons::YesNoCancel);
    if (answer == ReportAnswer::No) return true;  // the changes are dropped
    if (answer != ReportAnswer::Yes) return false;
    Save();
    return !m_collection.Modified();  // a save that failed keeps them
}

void TMainWindow::closeEvent(QCloseEvent* event) {
    if (Analysing()) {
        if (m_reporter.Report(ReportTitle(ReportKind::Question, m_nLanguage), QuitQuestionText(1),
                              ReportButtons::YesNo) != ReportAnswer::Yes)
            return event->ignore();
        m_run.Stop();
    }
    if (!MayDropChanges()) return event->ignore();
    event->accept();
}

}  // namespace moremate::ui
