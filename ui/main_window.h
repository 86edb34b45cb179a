// TMainWindow: the desktop program's one window. It shows the current problem of the open
// collection (board, description, stipulation, the moves made on the board), the progress of a
// running analysis and a status bar, and carries the menus and the toolbar whose commands act on
// the collection, the position and the engine. Commands that would change the position or the
// collection are refused while an analysis runs.
#pragma once

#include <QMainWindow>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "edit_history.h"
#include "engine/heuristics/heuristic_set.h"
#include "engine_run.h"
#include "library_text_reporter.h"
#include "problem_collection.h"
#include "problems/annotations/database_links.h"
#include "settings/options.h"
#include "settings/process_priority.h"
#include "tablebase/tablebase_service.h"

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QPlainTextEdit;
class QSystemTrayIcon;
class QToolBar;
class QTimer;
class QToolButton;

namespace moremate::ui {

class TBoardWidget;
class TClickButton;
class TPiecePalette;
class TUpDownButton;

class TMainWindow : public QMainWindow {
    Q_OBJECT
  public:
    // `reporter` shows the window's and the libraries' messages (message boxes, or a recording
    // reporter in tests); it outlives the window.
    TMainWindow(const TOptions& options, CReporter& reporter, QWidget* parent = nullptr);
    ~TMainWindow() override;

    // Opens `file` at its first problem; false (after reporting why) when it cannot be read.
    bool OpenCollection(const std::filesystem::path& file);
    // The default collection "myChessProblems.cp" in the program folder, created when missing.
    bool OpenDefaultCollection();
    static std::filesystem::path DefaultCollectionPath();
    // The file of the help page of the Help menu's item `id` (empty for another id).
    static std::filesystem::path HelpPagePath(const std::string& id);

    // What the window shows and holds, for its tests and its screenshots.
    QAction* Action(const std::string& id) const;
    std::vector<QAction*> Actions() const;
    QMenu* Menu(const std::string& id) const;
    const TProblemCollection& Collection() const { return m_collection; }
    bool Analysing() const { return m_run.Running(); }
    const std::vector<TMove>& MovesMade() const { return m_vMoves; }
    size_t MovesShown() const { return m_nShown; }
    // The comment of move `index` of the moves made (empty when it has none); an empty text
    // removes it. A comment belongs to the move after the same line from the same position: it
    // comes back whenever that line is shown again while the window lives.
    QString MoveComment(size_t index) const;
    void SetMoveComment(size_t index, const QString& text);
    TBoardWidget* Board() const { return m_pBoard; }
    TPiecePalette* Palette() const { return m_pPalette; }
    bool SettingMode() const { return m_bSettingMode; }
    QString ProgressText() const;
    QString StatusText() const;
    int Language() const { return m_nLanguage; }
    // Reports in the window's language, for the libraries that keep a reporter.
    CReporter& Reporter() { return m_reporter; }

    void SetLanguage(int language);
    bool SelectProblemNumber(uint32_t number);
    // Goes to the next (or previous) problem that `query` matches; reports when none does.
    bool FindProblem(const QString& query, bool forward);
    // Removes the problems that the collection `file` also holds; returns how many.
    size_t RemovePresentIn(const std::filesystem::path& file);
    // A click on a board square, as the mouse gives it.
    void ClickSquare(int square, Qt::MouseButton button);
    // A piece dragged in the position setting mode: from a square (none: from the palette) to a
    // square (none: off the board, taken away).
    void DropPiece(int from, int to, Piece piece);
    // The threads of the next run, 1 to kMaxThreads.
    void SetThreads(int threads);
    int Threads() const { return m_nThreads; }
    static constexpr int kMaxThreads = 64;
    // Tells of an analysis that the last session left unfinished (its auto-saved register data).
    void ShowRecoveryNotice();

  Q_SIGNALS:
    // The analysis ended and its results are shown and written into the problem.
    void AnalysisFinished();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    struct TCommand;
    static const std::vector<TCommand>& Commands();

    // Building and labelling.
    void BuildLayout();
    void BuildMenus();
    void AddCommand(const TCommand& command);
    // An item of a context menu, labelled from the text table like the menus' items.
    QAction* ContextAction(QMenu* menu, const char* id, void (TMainWindow::*run)());
    void BuildContextMenus();
    void BuildToolBar();
    TUpDownButton* AddStepTool(QToolBar* bar, const char* name, const char* tip,
                               const std::function<void(int)>& step);
    void AddThreadsTool(QToolBar* bar);
    void AddVariantTools(QToolBar* bar);
    void AddPeekTool(QToolBar* bar);
    void Relabel();
    QString Text(const char* id) const;
    // The text of a menu item as a dialog's title: without its shortcut and mnemonic.
    QString Title(const char* id) const;

    // Showing the current problem.
    // The problem anew: its number, description and stipulation (the header), and its moves.
    void ShowProblem();
    void ShowProblemHeader();
    void ShowLinks();
    void ShowBoard();
    void ShowMoves();
    // Asks for the comment of move `index` of the moves made.
    void EditMoveComment(size_t index);
    void CommentLastMove();
    void CommentPickedMove();
    void UpdateTitle();
    void Say(const QString& text);
    TChessboard ShownBoard() const { return BoardAfter(m_nShown); }
    // The position after the first `moves` of the moves made.
    TChessboard BoardAfter(size_t moves) const;

    // Message boxes titled in the window's language.
    void Inform(const std::string& text);
    void ReportError(const std::string& text);

    // Guards.
    bool RefuseWhileAnalysing();
    bool MayLeaveProblem();
    bool MayDropChanges();

    // Edits of the current problem.
    void Edit(const std::function<void(ProblemEntry&)>& change);
    void ChangeStipulation(int delta);
    void ClickInSettingMode(int square, Qt::MouseButton button);
    void PutPiece(int from, int to, Piece piece);
    void ClickMove(int square);
    void PlayMadeMove(const TMove& move);

    // File commands.
    void NewFile();
    void OpenDefault();
    void OpenSample();
    void OpenFile();
    void Save();
    void SaveAs();
    void AppendFile();
    void RemovePresentElsewhere();
    // Position commands.
    void CopyProblem() { CopyRecord(true, true); }
    void CopyWithoutVariants() { CopyRecord(false, true); }
    void CopyWithoutVariantsOrTags() { CopyRecord(false, false); }
    void CopyRecord(bool variants, bool tags);
    void CopyFen();
    void CopyFullFen();
    void Paste();
    void PasteAsMirror();
    std::optional<ProblemEntry> PastedEntry(const std::string& text);
    void ReportPasteFailure(const std::string& why);
    void BulkPaste() { BulkPasteText(false); }
    void BulkPastePrized() { BulkPasteText(true); }
    void BulkPasteText(bool prizedOnly);
    void ShiftPosition(int files, int ranks);
    void ShiftLeft() { ShiftPosition(-1, 0); }
    void ShiftRight() { ShiftPosition(1, 0); }
    void ShiftUp() { ShiftPosition(0, 1); }
    void ShiftDown() { ShiftPosition(0, -1); }
    void RotatePosition();
    void SwapColoursCommand();
    void CopyMoves();
    void ToggleSettingMode();
    void StipulationUp() { ChangeStipulation(1); }
    void StipulationDown() { ChangeStipulation(-1); }
    void StipulationUp10() { ChangeStipulation(10); }
    void StipulationDown10() { ChangeStipulation(-10); }
    void Undo();
    void Redo();
    // The problem's position searched in an outside database, in the default browser.
    void FindPosition(ProblemDatabase database);
    void FindInPdb() { FindPosition(ProblemDatabase::Pdb); }
    void FindInMeson() { FindPosition(ProblemDatabase::Meson); }
    void FindInAlbrecht() { FindPosition(ProblemDatabase::Albrecht); }
    void FindInYacpdb() { FindPosition(ProblemDatabase::Yacpdb); }
    // The description's links and the analysis menu.
    QString CurrentLink() const;
    void OpenLink();
    void CopyLink();
    void EditDescription();
    void OpenInNewInstance();
    // Problem commands.
    // F5: the solution, or Black's best defence when the board shows Black to move.
    void Solve() {
        m_nShown > 0 && !ShownBoard().WhiteToMove() ? FindDefence() : StartRun(false, false, false);
    }
    void FindDefence() { StartDefence(false); }
    void FindThoroughDefence() { StartDefence(true); }
    void StartDefence(bool thorough);
    void SolveAll() { StartRun(true, false, false); }
    // Solves, then shows the main variant played to its end.
    void SolveAndShowVariant();
    void SolveHybrid() { StartRun(false, true, false); }
    void SolveBruteForce() { StartRun(false, false, true); }
    void StartOrStop();
    void StopRun();
    void PauseRun();
    void PauseOneThread();
    // The settings a run starts with, as "Show settings of current analysis" shows them.
    QString RunSettingsText(const char* mode, int threads, int levels) const;
    void ShowRunSettings();
    void ResumeRun();
    void SkipMove() { SkipMoves(1); }
    void SkipFiveMoves() { SkipMoves(5); }
    void SkipMoves(size_t count);
    // The order of analysis of the first moves: the current one to the end, swapped with the
    // next, or skipped for one the user picks among those waiting.
    void MoveToEndOfAnalysis();
    void SwapWithNextMove();
    void SkipToChosenMove();
    void MoveBack();
    void MoveForward();
    void NextProblem();
    void PreviousProblem();
    void NewProblem();
    void FirstProblem();
    void LastProblem();
    void HistoryBack();
    void HistoryForward();
    void SelectNumber();
    void SelectFromList();
    void FindCommand();
    void FindNext();
    void FindPrevious();
    void SimilarPositions();
    void GoToChosen(const QString& title, const std::vector<size_t>& indexes);
    // View, variant, advanced, help, language.
    void RotateView();
    void ToggleProgressSize();
    void SaveMainVariant();
    void ShowMainVariant();
    void ShowOptions();
    void PositionId();
    void ClearRegister();
    void RegisterStatus();
    void GlobalRegisterStatus();
    void About();
    void ChooseThreads();
    // Provokes the crash of the kind the user chooses (AddTestCrashHandlerMenuItem).
    void TestCrash();
    // Priority, processors, tray, help pages.
    void BuildSystemMenus();
    void ShowPriority();
    void SetPriority(ProcessPriority priority);
    void PriorityHigh() { SetPriority(ProcessPriority::High); }
    void PriorityAboveNormal() { SetPriority(ProcessPriority::AboveNormal); }
    void PriorityNormal() { SetPriority(ProcessPriority::Normal); }
    void PriorityBelowNormal() { SetPriority(ProcessPriority::BelowNormal); }
    void PriorityLow() { SetPriority(ProcessPriority::Low); }
    void FillProcessors(QMenu* menu);
    void BuildTray();
    void ShowFromTray();
    void CloseFromTray();
    void OpenHelp(const char* id);
    void OpenManual() { OpenHelp("help.manual"); }
    void OpenReadme() { OpenHelp("help.readme"); }
    void OpenFaq() { OpenHelp("help.faq"); }
    void OpenHints() { OpenHelp("help.hints"); }
    void OpenSolutionModes() { OpenHelp("help.modes"); }
    void Polish() { SetLanguage(kPolish); }
    void English() { SetLanguage(kEnglish); }
    void Ukrainian() { SetLanguage(kUkrainian); }

    // Heuristics, tags, sort indications and variants (window_annotations.cpp).
    void SolveWithHeuristics();
    void SolveAllWithHeuristics();
    // The heuristics dialog on the current problem's set; false when the user cancels.
    bool ChooseHeuristics();
    void ShowAnnotations();
    void AddTagCommand();
    void RemoveTagCommand();
    void AppendTagsCommand();
    void EditSortIndications();
    void SaveVariantAs();
    void ShowVariant();
    void AnimateMainVariant();
    void AnimateVariant();
    void StopAnimation();
    void RenameVariantCommand();
    void DeleteVariantCommand();
    // A name chosen among the problem's variants (or, `editable`, typed anew); none: cancelled.
    std::optional<std::string> AskVariantName(const QString& title, bool editable);
    void Animate(const std::vector<TMove>& moves);
    std::vector<ProblemEntry> AllEntries() const;
    // The register commands (window_registers.cpp).
    bool RefuseRegisterCommand();
    std::filesystem::path DefaultRegisterFile() const;
    // On the engine thread; `saved` runs once the file is written.
    void SaveRegisterTo(const std::filesystem::path& file, const std::function<void()>& saved = {});
    void ReadRegisterFile(const std::filesystem::path& file);
    void SaveRegister();
    void SaveRegisterAs();
    void ReadRegister();
    void ReadRegisterFrom();
    void PinRegister();
    void UnpinRegister();

    // Regression tests and scripts (window_tests.cpp), each run on the engine thread like the long
    // tools on the precalculated data; their report comes back as a run's with the result kToolResult.
    static constexpr const char* kToolResult = "tool";
    bool RefuseTool();
    // `work` gives the text of its summary; `done` runs on the interface thread after the report.
    void StartTool(const std::function<std::string(CRunControl&)>& work,
                   const std::function<void()>& done = {});
    void StartRegressionTest(bool quick);
    void RegressionTest() { StartRegressionTest(false); }
    void QuickRegressionTest() { StartRegressionTest(true); }
    void RunScript();
    // The precalculated data of the position shown (window_precalc.cpp).
    void PositionInformation();
    void PrecalculateType();
    void VerifyType();
    void VerifyPartialType();
    void VerifyAllTypes(bool fromCurrent);
    void VerifyFiles() { VerifyAllTypes(false); }
    void VerifyFilesFromHere() { VerifyAllTypes(true); }
    void StepInType(int step);
    void NextInType() { StepInType(1); }
    void PreviousInType() { StepInType(-1); }
    void SetTypePosition(const TChessboard& board, uint64_t index);
    void PasteTypeIndex();
    void StepToLongestMate(int step);
    void CheckFenFile();
    void NextLongestMate() { StepToLongestMate(1); }
    void PreviousLongestMate() { StepToLongestMate(-1); }

    // The engine.
    TSolveSettings RunSettings() const;
    void StartRun(bool allSolutions, bool hybrid, bool bruteForce);
    void ShowProgress(const TRunProgress& progress);
    void RunFinished(const TProblemReport& report);
    void WriteResult(ProblemEntry& entry, const TProblemReport& report) const;
    void UpdateRunState();
    void ShowRegisterCount();
    // Moves to another problem after the question of a running analysis.
    void Navigate(const std::function<bool(TProblemCollection&)>& move);

    TOptions m_options;
    CLibraryTextReporter m_libraryReporter;
    CReporter& m_reporter;  // the libraries' reports too, in the window's language
    int m_nLanguage;
    int m_nThreads;
    TProblemCollection m_collection;
    CEditHistory m_history;
    std::vector<TMove> m_vMoves;  // the moves made on the board from the problem's position
    size_t m_nShown = 0;          // how many of them the board shows
    struct TMoveComment {
        std::string sStart;        // the squares of the position the line starts from
        std::vector<TMove> vLine;  // the moves up to the commented one, itself included
        QString sText;
    };
    TMoveComment CommentKey(size_t index) const;
    std::vector<TMoveComment> m_vComments;
    size_t m_nCommentRow = 0;  // the move the moves list's menu was opened on
    bool m_bSettingMode = false;
    int m_nPicked = kNoSquare;  // the first click of a move or of a piece moved in the setting mode
    std::string m_sFindQuery;   // the last query of the find commands

    std::unique_ptr<CReporter> m_pTablebaseReporter;  // the second instance's notice as the options say
    std::unique_ptr<CTablebaseService> m_pTablebase;
    std::unique_ptr<CRunRegister> m_pRunRegister;
    CEngineRun m_run;
    size_t m_nRunIndex = 0;  // the problem being analysed
    QString m_sRunSettings;  // the settings it runs with

    std::map<std::string, QAction*> m_actions;
    std::map<std::string, QMenu*> m_menus;
    std::map<QObject*, std::string> m_tips;  // widgets with a tool tip from the text table
    TBoardWidget* m_pBoard = nullptr;
    TPiecePalette* m_pPalette = nullptr;
    QLineEdit* m_pDescription = nullptr;
    QLabel* m_pLinks = nullptr;  // the description's database references as links
    QString m_sLink;             // the link the mouse was last over
    QMenu* m_pLinkMenu = nullptr;
    QMenu* m_pAnalysisMenu = nullptr;
    QMenu* m_pCommentMenu = nullptr;
    QLabel* m_pStipulation = nullptr;
    TClickButton* m_pNumber = nullptr;
    QListWidget* m_pMoves = nullptr;
    QLabel* m_pMovesTitle = nullptr;
    QLabel* m_pProgressTitle = nullptr;
    QPlainTextEdit* m_pProgress = nullptr;
    TClickButton* m_pStart = nullptr;
    bool m_bProgressLarge = false;
    TUpDownButton* m_pThreadsTool = nullptr;
    QLabel* m_pRegisterCount = nullptr;  // the positions in the temporary register
    bool m_bRemainingMoves = false;      // the moves made numbered by the moves left, not ordinally
    int m_nPeek = 0;                     // the observed line shown: 0 all, k the k-th
    QSystemTrayIcon* m_pTray = nullptr;  // none where the desktop has no tray
    std::optional<THeuristicSet> m_oRunHeuristics;       // the next run's pass-1 set, chosen in the dialog
    bool m_bRunRelaxes = true;                           // and whether the passes may relax it
    std::optional<THeuristicSet> m_oPreviousHeuristics;  // the set chosen last time
    QLabel* m_pAnnotations = nullptr;                    // the problem's tags and sort indications
    QTimer* m_pAnimation = nullptr;
    bool m_bScriptRunning = false;
};

}  // namespace moremate::ui
