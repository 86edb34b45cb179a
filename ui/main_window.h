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
#include "problem_collection.h"
#include "registers/register_autosave.h"
#include "settings/options.h"
#include "tablebase/tablebase_service.h"

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QPlainTextEdit;
class QTimer;
class QToolButton;

namespace moremate::ui {

class TBoardWidget;
class TClickButton;
class TPiecePalette;

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

    // What the window shows and holds, for its tests and its screenshots.
    QAction* Action(const std::string& id) const;
    std::vector<QAction*> Actions() const;
    QMenu* Menu(const std::string& id) const;
    const TProblemCollection& Collection() const { return m_collection; }
    bool Analysing() const { return m_run.Running(); }
    const std::vector<TMove>& MovesMade() const { return m_vMoves; }
    size_t MovesShown() const { return m_nShown; }
    TBoardWidget* Board() const { return m_pBoard; }
    TPiecePalette* Palette() const { return m_pPalette; }
    bool SettingMode() const { return m_bSettingMode; }
    QString ProgressText() const;
    QString StatusText() const;
    int Language() const { return m_nLanguage; }

    void SetLanguage(int language);
    bool SelectProblemNumber(uint32_t number);
    // A click on a board square, as the mouse gives it.
    void ClickSquare(int square, Qt::MouseButton button);
    void SetThreads(int threads) { m_nThreads = threads; }
    // Tells of an analysis that the last session left unfinished (its auto-saved register data).
    void ShowRecoveryNotice();

  Q_SIGNALS:
    // The analysis ended and its results are shown and written into the problem.
    void AnalysisFinished();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    struct TCommand;
    static const std::vector<TCommand>& Commands();

    // Building and labelling.
    void BuildLayout();
    void BuildMenus();
    void AddCommand(const TCommand& command);
    void BuildToolBar();
    void Relabel();
    QString Text(const char* id) const;
    // The text of a menu item as a dialog's title: without its shortcut and mnemonic.
    QString Title(const char* id) const;

    // Showing the current problem.
    // The problem anew: its number, description and stipulation (the header), and its moves.
    void ShowProblem();
    void ShowProblemHeader();
    void ShowBoard();
    void ShowMoves();
    void UpdateTitle();
    void Say(const QString& text);
    TChessboard ShownBoard() const;

    // Guards.
    bool RefuseWhileAnalysing();
    bool MayLeaveProblem();
    bool MayDropChanges();

    // Edits of the current problem.
    void Edit(const std::function<void(ProblemEntry&)>& change);
    void ChangeStipulation(int delta);
    void ClickInSettingMode(int square, Qt::MouseButton button);
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
    // Problem commands.
    // F5: the solution, or Black's best defence when the board shows Black to move.
    void Solve() {
        m_nShown > 0 && !ShownBoard().WhiteToMove() ? FindDefence() : StartRun(false, false, false);
    }
    void FindDefence();
    void SolveAll() { StartRun(true, false, false); }
    // Solves, then shows the main variant played to its end.
    void SolveAndShowVariant();
    void SolveHybrid() { StartRun(false, true, false); }
    void SolveBruteForce() { StartRun(false, false, true); }
    void StartOrStop();
    void StopRun();
    void PauseRun();
    void ResumeRun();
    void SkipMove();
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
    // Saves the run's register every AutoSaveMinutes (when the register is emptied) with its
    // descriptor, which tells the next start whether the run ended forcibly.
    void AttachAutoSave(const ProblemEntry& entry, const std::optional<THeuristicSet>& set);

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
    // Moves to another problem after the question of a running analysis.
    void Navigate(const std::function<bool(TProblemCollection&)>& move);

    TOptions m_options;
    CReporter& m_reporter;
    int m_nLanguage;
    int m_nThreads;
    TProblemCollection m_collection;
    CEditHistory m_history;
    std::vector<TMove> m_vMoves;  // the moves made on the board from the problem's position
    size_t m_nShown = 0;          // how many of them the board shows
    bool m_bSettingMode = false;
    int m_nPicked = kNoSquare;  // the first click of a move or of a piece moved in the setting mode

    std::unique_ptr<CReporter> m_pTablebaseReporter;  // the second instance's notice as the options say
    std::unique_ptr<CTablebaseService> m_pTablebase;
    std::unique_ptr<CRunRegister> m_pRunRegister;
    std::unique_ptr<CRegisterAutoSave> m_pAutoSave;  // of the run going on; after m_run, which ends first
    CEngineRun m_run;
    size_t m_nRunIndex = 0;  // the problem being analysed

    std::map<std::string, QAction*> m_actions;
    std::map<std::string, QMenu*> m_menus;
    std::map<QObject*, std::string> m_tips;  // widgets with a tool tip from the text table
    TBoardWidget* m_pBoard = nullptr;
    TPiecePalette* m_pPalette = nullptr;
    QLineEdit* m_pDescription = nullptr;
    QLabel* m_pStipulation = nullptr;
    QToolButton* m_pNumber = nullptr;
    QListWidget* m_pMoves = nullptr;
    QLabel* m_pMovesTitle = nullptr;
    QLabel* m_pProgressTitle = nullptr;
    QPlainTextEdit* m_pProgress = nullptr;
    TClickButton* m_pStart = nullptr;
    bool m_bProgressLarge = false;
    std::optional<THeuristicSet> m_oRunHeuristics;       // the next run's pass-1 set, chosen in the dialog
    bool m_bRunRelaxes = true;                           // and whether the passes may relax it
    std::optional<THeuristicSet> m_oPreviousHeuristics;  // the set chosen last time
    QLabel* m_pAnnotations = nullptr;                    // the problem's tags and sort indications
    QTimer* m_pAnimation = nullptr;
    bool m_bScriptRunning = false;
};

}  // namespace moremate::ui
