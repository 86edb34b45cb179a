// The command set of the main window: one row per command with its menu, its shortcut and the
// member that carries it out; the menus and the toolbar are built from it.
#include <QAction>
#include <QActionGroup>
#include <QMenuBar>
#include <QPainter>
#include <QStyle>
#include <QToolBar>

#include "click_button.h"
#include "main_window.h"
#include "piece_glyphs.h"

namespace moremate::ui {

struct TMainWindow::TCommand {
    const char* id;        // the text identifier, also the action's name
    const char* menu;      // the popup it belongs to
    const char* shortcut;  // empty: none
    void (TMainWindow::*run)();
};

const std::vector<TMainWindow::TCommand>& TMainWindow::Commands() {
    static const std::vector<TCommand> commands = {
        {"file.new", "menu.file", "", &TMainWindow::NewFile},
        {"file.default", "menu.file", "", &TMainWindow::OpenDefault},
        {"file.sample", "menu.file", "", &TMainWindow::OpenSample},
        {"file.open", "menu.file", "Ctrl+O", &TMainWindow::OpenFile},
        {"file.save", "menu.file", "Ctrl+S", &TMainWindow::Save},
        {"file.saveas", "menu.file", "", &TMainWindow::SaveAs},
        {"file.append", "menu.file", "", &TMainWindow::AppendFile},
        {"file.exit", "menu.file", "", nullptr},
        {"pos.copy", "menu.position", "Ctrl+C", &TMainWindow::CopyProblem},
        {"pos.copynovar", "menu.position", "", &TMainWindow::CopyWithoutVariants},
        {"pos.copynotags", "menu.position", "", &TMainWindow::CopyWithoutVariantsOrTags},
        {"pos.copyfen", "menu.position", "Ctrl+Shift+C", &TMainWindow::CopyFen},
        {"pos.copyfullfen", "menu.position", "", &TMainWindow::CopyFullFen},
        {"pos.paste", "menu.position", "Ctrl+V", &TMainWindow::Paste},
        {"pos.pastemirror", "menu.position", "", &TMainWindow::PasteAsMirror},
        {"pos.rotate", "menu.position", "", &TMainWindow::RotatePosition},
        {"pos.swap", "menu.position", "", &TMainWindow::SwapColoursCommand},
        {"pos.copymoves", "menu.position", "", &TMainWindow::CopyMoves},
        {"pos.setting", "menu.position", "", &TMainWindow::ToggleSettingMode},
        {"pos.stipup", "menu.position", "", &TMainWindow::StipulationUp},
        {"pos.stipdown", "menu.position", "", &TMainWindow::StipulationDown},
        {"pos.stipup10", "menu.position", "", &TMainWindow::StipulationUp10},
        {"pos.stipdown10", "menu.position", "", &TMainWindow::StipulationDown10},
        {"pos.undo", "menu.position", "Ctrl+Z", &TMainWindow::Undo},
        {"pos.redo", "menu.position", "Ctrl+Y", &TMainWindow::Redo},
        {"prob.solve", "menu.problem", "F5", &TMainWindow::Solve},
        {"prob.all", "menu.problem", "Shift+F5", &TMainWindow::SolveAll},
        {"prob.whole", "menu.problem", "Alt+F5", &TMainWindow::SolveAndShowVariant},
        {"prob.defence", "menu.problem", "", &TMainWindow::FindDefence},
        {"prob.stop", "menu.problem", "", &TMainWindow::StopRun},
        {"prob.pause", "menu.problem", "", &TMainWindow::PauseRun},
        {"prob.resume", "menu.problem", "", &TMainWindow::ResumeRun},
        {"prob.skip", "menu.problem", "", &TMainWindow::SkipMove},
        {"prob.hybrid", "menu.problem", "", &TMainWindow::SolveHybrid},
        {"prob.brute", "menu.problem", "", &TMainWindow::SolveBruteForce},
        {"prob.back", "menu.problem", "", &TMainWindow::MoveBack},
        {"prob.forward", "menu.problem", "", &TMainWindow::MoveForward},
        {"prob.next", "menu.problem", "Ctrl+Shift+Right", &TMainWindow::NextProblem},
        {"prob.prev", "menu.problem", "Ctrl+Shift+Left", &TMainWindow::PreviousProblem},
        {"prob.new", "menu.problem", "Ctrl+N", &TMainWindow::NewProblem},
        {"prob.first", "menu.problem", "Ctrl+Home", &TMainWindow::FirstProblem},
        {"prob.last", "menu.problem", "Ctrl+End", &TMainWindow::LastProblem},
        {"prob.history", "menu.problem", "Ctrl+-", &TMainWindow::HistoryBack},
        {"prob.return", "menu.problem", "Ctrl++", &TMainWindow::HistoryForward},
        {"prob.addtag", "menu.problem", "Ctrl+T", &TMainWindow::AddTagCommand},
        {"prob.removetag", "menu.problem", "Ctrl+Shift+T", &TMainWindow::RemoveTagCommand},
        {"prob.appendtags", "menu.problem", "", &TMainWindow::AppendTagsCommand},
        {"prob.select", "menu.problem", "Ctrl+G", &TMainWindow::SelectNumber},
        {"view.rotate", "menu.view", "", &TMainWindow::RotateView},
        {"view.progress", "menu.view", "", &TMainWindow::ToggleProgressSize},
        {"var.savemain", "menu.variant", "", &TMainWindow::SaveMainVariant},
        {"var.showmain", "menu.variant", "", &TMainWindow::ShowMainVariant},
        {"var.saveas", "menu.variant", "", &TMainWindow::SaveVariantAs},
        {"var.show", "menu.variant", "", &TMainWindow::ShowVariant},
        {"var.animatemain", "menu.variant", "", &TMainWindow::AnimateMainVariant},
        {"var.animate", "menu.variant", "", &TMainWindow::AnimateVariant},
        {"var.stopanim", "menu.variant", "", &TMainWindow::StopAnimation},
        {"var.rename", "menu.variant", "", &TMainWindow::RenameVariantCommand},
        {"var.delete", "menu.variant", "", &TMainWindow::DeleteVariantCommand},
        {"adv.heursolve", "menu.advanced", "Ctrl+F5", &TMainWindow::SolveWithHeuristics},
        {"adv.heurall", "menu.advanced", "Shift+Ctrl+F5", &TMainWindow::SolveAllWithHeuristics},
        {"adv.sortind", "menu.advanced", "Ctrl+W", &TMainWindow::EditSortIndications},
        {"adv.options", "menu.advanced", "", &TMainWindow::ShowOptions},
        {"adv.id", "menu.advanced", "", &TMainWindow::PositionId},
        {"adv.regstatus", "menu.advanced", "", &TMainWindow::RegisterStatus},
        {"adv.savereg", "menu.advanced", "", &TMainWindow::SaveRegister},
        {"adv.saveregas", "menu.advanced", "", &TMainWindow::SaveRegisterAs},
        {"adv.readreg", "menu.advanced", "", &TMainWindow::ReadRegister},
        {"adv.readregfrom", "menu.advanced", "", &TMainWindow::ReadRegisterFrom},
        {"adv.clearreg", "menu.advanced", "", &TMainWindow::ClearRegister},
        {"adv.pinreg", "menu.advanced", "", &TMainWindow::PinRegister},
        {"adv.unpinreg", "menu.advanced", "", &TMainWindow::UnpinRegister},
        {"adv.regtest", "menu.advanced", "", &TMainWindow::RegressionTest},
        {"adv.quicktest", "menu.advanced", "", &TMainWindow::QuickRegressionTest},
        {"adv.script", "menu.advanced", "", &TMainWindow::RunScript},
        {"adv.globalstatus", "menu.advanced", "", &TMainWindow::GlobalRegisterStatus},
        {"adv.verifyfiles", "menu.advanced", "", &TMainWindow::VerifyFiles},
        {"adv.verifyresume", "menu.advanced", "", &TMainWindow::VerifyFilesFromHere},
        {"adv.maxnext", "menu.advanced", "Ctrl+M", &TMainWindow::NextLongestMate},
        {"adv.maxprev", "menu.advanced", "Ctrl+Shift+M", &TMainWindow::PreviousLongestMate},
        {"adv.posinfo", "menu.advanced", "Ctrl+I", &TMainWindow::PositionInformation},
        {"adv.typeindex", "menu.advanced", "", &TMainWindow::PasteTypeIndex},
        {"adv.prevtype", "menu.advanced", "Shift+Ctrl+P", &TMainWindow::PreviousInType},
        {"adv.nexttype", "menu.advanced", "Shift+Ctrl+N", &TMainWindow::NextInType},
        {"adv.verifytype", "menu.advanced", "", &TMainWindow::VerifyType},
        {"adv.precalc", "menu.advanced", "", &TMainWindow::PrecalculateType},
        {"adv.fencheck", "menu.advanced", "", &TMainWindow::CheckFenFile},
        {"help.about", "menu.help", "", &TMainWindow::About},
        {"help.threads", "menu.help", "", &TMainWindow::ChooseThreads},
        {"lang.polish", "menu.language", "", &TMainWindow::Polish},
        {"lang.english", "menu.language", "", &TMainWindow::English},
        {"lang.ukrainian", "menu.language", "", &TMainWindow::Ukrainian},
    };
    return commands;
}

void TMainWindow::AddCommand(const TCommand& command) {
    QMenu*& menu = m_menus[command.menu];
    if (!menu) menu = menuBar()->addMenu(command.menu);
    QAction* action = menu->addAction(command.id);
    action->setObjectName(command.id);
    if (*command.shortcut) action->setShortcut(QKeySequence(command.shortcut));
    if (command.run)
        connect(action, &QAction::triggered, this, command.run);
    else
        connect(action, &QAction::triggered, this, &QWidget::close);
    m_actions[command.id] = action;
}

void TMainWindow::BuildMenus() {
    for (const TCommand& command : Commands()) {
        AddCommand(command);
        if (command.run == &TMainWindow::ChooseThreads && m_options.m_bAddTestCrashHandlerMenuItem)
            AddCommand({"help.crashtest", "menu.help", "", &TMainWindow::TestCrash});
    }
    auto* languages = new QActionGroup(this);
    const char* ids[] = {"lang.polish", "lang.english", "lang.ukrainian"};
    for (int language = 0; language < 3; ++language) {
        QAction* action = m_actions.at(ids[language]);
        action->setCheckable(true);
        action->setChecked(language == m_nLanguage);
        languages->addAction(action);
    }
}

namespace {

// A tool icon drawn from a piece glyph: the hand of the position setting mode.
QIcon PieceIcon(Piece piece) {
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    DrawPiece(painter, QRectF(0, 0, 32, 32), piece);
    return QIcon(pixmap);
}

}  // namespace

void TMainWindow::BuildToolBar() {
    QToolBar* bar = addToolBar("tools");
    bar->setMovable(false);
    const auto tool = [&](const char* action, const char* tip, const QIcon& icon) {
        QAction* a = m_actions.at(action);
        auto* button = new TClickButton(bar);
        button->setIcon(icon);
        button->setAutoRaise(true);
        connect(button, &QToolButton::clicked, a, &QAction::trigger);
        m_tips[button] = tip;
        bar->addWidget(button);
        return button;
    };
    QStyle* s = style();
    TClickButton* back = tool("prob.back", "tip.back", s->standardIcon(QStyle::SP_ArrowBack));
    TClickButton* forward = tool("prob.forward", "tip.forward", s->standardIcon(QStyle::SP_ArrowForward));
    connect(back, &TClickButton::RightClicked, this, [this] {
        m_nShown = m_nShown > 5 ? m_nShown - 5 : 0;
        ShowBoard();
    });
    connect(forward, &TClickButton::RightClicked, this, [this] {
        m_nShown = std::min(m_vMoves.size(), m_nShown + 5);
        ShowBoard();
    });
    tool("file.save", "tip.save", s->standardIcon(QStyle::SP_DialogSaveButton));
    tool("pos.setting", "tip.setting", PieceIcon(MakePiece(kWhite, kKnight)));
    tool("view.rotate", "tip.rotate", s->standardIcon(QStyle::SP_BrowserReload));
    tool("adv.options", "tip.options", s->standardIcon(QStyle::SP_FileDialogDetailedView));
    tool("view.progress", "tip.progress", s->standardIcon(QStyle::SP_TitleBarUnshadeButton));
    bar->addSeparator();
    m_pStart = new TClickButton(bar);
    m_pStart->setAutoRaise(true);
    m_tips[m_pStart] = "tip.start";
    connect(m_pStart, &QToolButton::clicked, this, &TMainWindow::StartOrStop);
    connect(m_pStart, &TClickButton::RightClicked, this, [this] {
        if (!Analysing()) return SolveAll();
        m_run.Paused() ? ResumeRun() : PauseRun();
    });
    connect(m_pStart, &TClickButton::MiddleClicked, this, &TMainWindow::SolveAndShowVariant);
    bar->addWidget(m_pStart);
    bar->addSeparator();
    tool("prob.prev", "tip.prev", s->standardIcon(QStyle::SP_MediaSeekBackward));
    tool("prob.next", "tip.next", s->standardIcon(QStyle::SP_MediaSeekForward));
}

}  // namespace moremate::ui
