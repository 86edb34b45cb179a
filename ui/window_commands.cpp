// The command set of the main window: one row per command with its menu, its shortcut and the
// member that carries it out; the menus and the toolbar are built from it.
#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QStyle>
#include <QToolBar>

#include "click_button.h"
#include "main_window.h"
#include "piece_glyphs.h"
#include "up_down_button.h"

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
        {"file.remove", "menu.file", "", &TMainWindow::RemovePresentElsewhere},
        {"file.exit", "menu.file", "", nullptr},
        {"pos.copy", "menu.position", "Ctrl+C", &TMainWindow::CopyProblem},
        {"pos.copynovar", "menu.position", "", &TMainWindow::CopyWithoutVariants},
        {"pos.copynotags", "menu.position", "", &TMainWindow::CopyWithoutVariantsOrTags},
        {"pos.copyfen", "menu.position", "Ctrl+Shift+C", &TMainWindow::CopyFen},
        {"pos.copyfullfen", "menu.position", "", &TMainWindow::CopyFullFen},
        {"pos.paste", "menu.position", "Ctrl+V", &TMainWindow::Paste},
        {"pos.pastemirror", "menu.position", "", &TMainWindow::PasteAsMirror},
        {"pos.bulk", "menu.position", "", &TMainWindow::BulkPaste},
        {"pos.bulkprized", "menu.position", "", &TMainWindow::BulkPastePrized},
        {"pos.rotate", "menu.position", "", &TMainWindow::RotatePosition},
        {"pos.swap", "menu.position", "", &TMainWindow::SwapColoursCommand},
        {"pos.left", "menu.position", "Ctrl+L", &TMainWindow::ShiftLeft},
        {"pos.right", "menu.position", "Ctrl+R", &TMainWindow::ShiftRight},
        {"pos.up", "menu.position", "Ctrl+U", &TMainWindow::ShiftUp},
        {"pos.down", "menu.position", "Ctrl+D", &TMainWindow::ShiftDown},
        {"pos.copymoves", "menu.position", "", &TMainWindow::CopyMoves},
        {"pos.setting", "menu.position", "", &TMainWindow::ToggleSettingMode},
        {"pos.stipup", "menu.position", "", &TMainWindow::StipulationUp},
        {"pos.stipdown", "menu.position", "", &TMainWindow::StipulationDown},
        {"pos.stipup10", "menu.position", "", &TMainWindow::StipulationUp10},
        {"pos.stipdown10", "menu.position", "", &TMainWindow::StipulationDown10},
        {"pos.undo", "menu.position", "Ctrl+Z", &TMainWindow::Undo},
        {"pos.redo", "menu.position", "Ctrl+Y", &TMainWindow::Redo},
        {"pos.findpdb", "menu.position", "", &TMainWindow::FindInPdb},
        {"pos.findmeson", "menu.position", "", &TMainWindow::FindInMeson},
        {"pos.findalbrecht", "menu.position", "", &TMainWindow::FindInAlbrecht},
        {"pos.findyacpdb", "menu.position", "", &TMainWindow::FindInYacpdb},
        {"prob.solve", "menu.problem", "F5", &TMainWindow::Solve},
        {"prob.all", "menu.problem", "Shift+F5", &TMainWindow::SolveAll},
        {"prob.whole", "menu.problem", "Alt+F5", &TMainWindow::SolveAndShowVariant},
        {"prob.defence", "menu.problem", "", &TMainWindow::FindDefence},
        {"prob.thorough", "menu.problem", "", &TMainWindow::FindThoroughDefence},
        {"prob.stop", "menu.problem", "", &TMainWindow::StopRun},
        {"prob.pause", "menu.problem", "", &TMainWindow::PauseRun},
        {"prob.pauseone", "menu.problem", "", &TMainWindow::PauseOneThread},
        {"prob.resume", "menu.problem", "", &TMainWindow::ResumeRun},
        {"prob.settings", "menu.problem", "", &TMainWindow::ShowRunSettings},
        {"prob.skip", "menu.problem", "", &TMainWindow::SkipMove},
        {"prob.hybrid", "menu.problem", "", &TMainWindow::SolveHybrid},
        {"prob.brute", "menu.problem", "", &TMainWindow::SolveBruteForce},
        {"prob.back", "menu.problem", "", &TMainWindow::MoveBack},
        {"prob.forward", "menu.problem", "", &TMainWindow::MoveForward},
        {"prob.comment", "menu.problem", "", &TMainWindow::CommentLastMove},
        {"prob.next", "menu.problem", "Ctrl+Shift+Right", &TMainWindow::NextProblem},
        {"prob.prev", "menu.problem", "Ctrl+Shift+Left", &TMainWindow::PreviousProblem},
        {"prob.new", "menu.problem", "Ctrl+N", &TMainWindow::NewProblem},
        {"prob.first", "menu.problem", "Ctrl+Home", &TMainWindow::FirstProblem},
        {"prob.last", "menu.problem", "Ctrl+End", &TMainWindow::LastProblem},
        {"prob.history", "menu.problem", "Ctrl+-", &TMainWindow::HistoryBack},
        {"prob.return", "menu.problem", "Ctrl++", &TMainWindow::HistoryForward},
        {"prob.find", "menu.problem", "Ctrl+F", &TMainWindow::FindCommand},
        {"prob.findnext", "menu.problem", "F3", &TMainWindow::FindNext},
        {"prob.findprev", "menu.problem", "Shift+F3", &TMainWindow::FindPrevious},
        {"prob.addtag", "menu.problem", "Ctrl+T", &TMainWindow::AddTagCommand},
        {"prob.removetag", "menu.problem", "Ctrl+Shift+T", &TMainWindow::RemoveTagCommand},
        {"prob.appendtags", "menu.problem", "", &TMainWindow::AppendTagsCommand},
        {"prob.select", "menu.problem", "Ctrl+G", &TMainWindow::SelectNumber},
        {"prob.list", "menu.problem", "Ctrl+Shift+G", &TMainWindow::SelectFromList},
        {"prob.similar", "menu.problem", "", &TMainWindow::SimilarPositions},
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
        {"prio.high", "menu.priority", "", &TMainWindow::PriorityHigh},
        {"prio.above", "menu.priority", "", &TMainWindow::PriorityAboveNormal},
        {"prio.normal", "menu.priority", "", &TMainWindow::PriorityNormal},
        {"prio.below", "menu.priority", "", &TMainWindow::PriorityBelowNormal},
        {"prio.low", "menu.priority", "", &TMainWindow::PriorityLow},
        {"help.manual", "menu.help", "", &TMainWindow::OpenManual},
        {"help.readme", "menu.help", "", &TMainWindow::OpenReadme},
        {"help.faq", "menu.help", "", &TMainWindow::OpenFaq},
        {"help.hints", "menu.help", "", &TMainWindow::OpenHints},
        {"help.modes", "menu.help", "", &TMainWindow::OpenSolutionModes},
        {"adv.verifyfiles", "menu.advanced", "", &TMainWindow::VerifyFiles},
        {"adv.verifyresume", "menu.advanced", "", &TMainWindow::VerifyFilesFromHere},
        {"adv.maxnext", "menu.advanced", "Ctrl+M", &TMainWindow::NextLongestMate},
        {"adv.maxprev", "menu.advanced", "Ctrl+Shift+M", &TMainWindow::PreviousLongestMate},
        {"adv.posinfo", "menu.advanced", "Ctrl+I", &TMainWindow::PositionInformation},
        {"adv.typeindex", "menu.advanced", "", &TMainWindow::PasteTypeIndex},
        {"adv.prevtype", "menu.advanced", "Shift+Ctrl+P", &TMainWindow::PreviousInType},
        {"adv.nexttype", "menu.advanced", "Shift+Ctrl+N", &TMainWindow::NextInType},
        {"adv.verifytype", "menu.advanced", "", &TMainWindow::VerifyType},
        {"adv.verifypartial", "menu.advanced", "", &TMainWindow::VerifyPartialType},
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
    AddThreadsTool(bar);
    tool("view.rotate", "tip.rotate", s->standardIcon(QStyle::SP_BrowserReload));
    tool("adv.options", "tip.options", s->standardIcon(QStyle::SP_FileDialogDetailedView));
    tool("view.progress", "tip.progress", s->standardIcon(QStyle::SP_TitleBarUnshadeButton));
    bar->addSeparator();
    m_pRegisterCount = new QLabel("0", bar);
    m_pRegisterCount->setMinimumWidth(64);
    m_pRegisterCount->setAlignment(Qt::AlignCenter);
    m_tips[m_pRegisterCount] = "tip.registercount";
    bar->addWidget(m_pRegisterCount);
    m_pStart = new TClickButton(bar);
    m_pStart->setAutoRaise(true);
    m_tips[m_pStart] = "tip.start";
    connect(m_pStart, &QToolButton::clicked, this, &TMainWindow::StartOrStop);
    connect(m_pStart, &TClickButton::RightClicked, this, [this](Qt::KeyboardModifiers modifiers) {
        if (!Analysing())
            return m_nShown > 0 && !ShownBoard().WhiteToMove() ? FindThoroughDefence() : SolveAll();
        if (modifiers & Qt::ControlModifier) return PauseOneThread();
        m_run.Paused() ? ResumeRun() : PauseRun();
    });
    connect(m_pStart, &TClickButton::MiddleClicked, this, &TMainWindow::SolveAndShowVariant);
    bar->addWidget(m_pStart);
    bar->addSeparator();
    tool("prob.prev", "tip.prev", s->standardIcon(QStyle::SP_MediaSeekBackward));
    tool("prob.next", "tip.next", s->standardIcon(QStyle::SP_MediaSeekForward));
    AddPeekTool(bar);
    AddVariantTools(bar);
}

// A tool that steps a number: `step(+1)` from its upper half, `step(-1)` from its lower half.
TUpDownButton* TMainWindow::AddStepTool(QToolBar* bar, const char* name, const char* tip,
                                        const std::function<void(int)>& step) {
    auto* tool = new TUpDownButton(bar);
    tool->setObjectName(name);
    tool->setAutoRaise(true);
    tool->setMinimumWidth(32);
    m_tips[tool] = tip;
    connect(tool, &TUpDownButton::Up, this, [step] { step(1); });
    connect(tool, &TUpDownButton::Down, this, [step] { step(-1); });
    bar->addWidget(tool);
    return tool;
}

// The threads of the next run.
void TMainWindow::AddThreadsTool(QToolBar* bar) {
    m_pThreadsTool = AddStepTool(bar, "tool.threads", "tip.threads",
                                 [this](int delta) { SetThreads(m_nThreads + delta); });
    SetThreads(m_nThreads);
}

void TMainWindow::SetThreads(int threads) {
    m_nThreads = std::clamp(threads, 1, kMaxThreads);
    m_pThreadsTool->setText(QString::number(m_nThreads));
}

// The thread whose line the progress area shows: "A" all of them, else the k-th line.
void TMainWindow::AddPeekTool(QToolBar* bar) {
    TUpDownButton* peek = AddStepTool(bar, "tool.peek", "tip.peek", [this](int delta) {
        m_nPeek = std::clamp(m_nPeek + delta, 0, kMaxThreads);
    });
    const auto show = [this, peek] { peek->setText(m_nPeek == 0 ? QString("A") : QString::number(m_nPeek)); };
    connect(peek, &TUpDownButton::Up, this, show);  // after the step, connected first
    connect(peek, &TUpDownButton::Down, this, show);
    show();
}

// The numbering of the moves made, and the main variant's tool.
void TMainWindow::AddVariantTools(QToolBar* bar) {
    auto* remaining = new QCheckBox(bar);
    remaining->setObjectName("tool.remaining");
    m_tips[remaining] = "tip.remaining";
    connect(remaining, &QCheckBox::toggled, this, [this](bool on) {
        m_bRemainingMoves = on;
        ShowMoves();
    });
    bar->addWidget(remaining);
    auto* main = new TClickButton(bar);
    main->setAutoRaise(true);
    main->setIcon(PieceIcon(MakePiece(kWhite, kQueen)));
    m_tips[main] = "tip.mainvariant";
    connect(main, &QToolButton::clicked, this, &TMainWindow::SaveMainVariant);
    connect(main, &TClickButton::RightClicked, this, [this] { Menu("menu.variant")->popup(QCursor::pos()); });
    bar->addWidget(main);
}

}  // namespace moremate::ui
