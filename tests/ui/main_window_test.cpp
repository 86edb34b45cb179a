// The main window driven through its actions, as the menus and keys drive it, on the offscreen
// platform: reports go to a recording reporter that answers the questions from a queue.
#include <sys/wait.h>
#include <unistd.h>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDesktopServices>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <fstream>
#include <set>
#include <sstream>
#include <string_view>

#include "core/fen.h"
#include "diagnostics/crash_handler.h"
#include "engine/run/run_texts.h"
#include "problems/annotations/problem_variants.h"
#include "settings/instance_lock.h"
#include "settings/options_dialog.h"
#include "settings/process_priority.h"
#include "tests/ui/window_test_support.h"
#include "ui/board_widget.h"
#include "ui/instance_notice.h"
#include "ui/main_window.h"
#include "ui/options_window.h"
#include "ui/piece_palette.h"
#include "ui/problem_search.h"
#include "ui/progress_text.h"
#include "ui/start_log.h"
#include "ui/texts.h"

using namespace moremate;
using namespace moremate::ui;
using moremate::ui::test::Count;
using moremate::ui::test::Reported;

namespace {

// The two problems and a #3.
const std::string kCollection =
    std::string(test::kTwoProblems) +
    "\n3 #3\n{\n\tDescription: third\n\tFEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n}\n";

std::string ReadText(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

class TMainWindowTest : public QObject {
    Q_OBJECT

  private:
    QTemporaryDir m_dir;
    std::unique_ptr<CRecordingReporter> m_pReporter;
    std::unique_ptr<TMainWindow> m_pWindow;

    std::filesystem::path File() const {
        return std::filesystem::path(m_dir.path().toStdString()) / "test.cp";
    }
    void Trigger(const char* id) { m_pWindow->Action(id)->trigger(); }
    std::string Fen() const { return WriteFenPlacement(m_pWindow->Collection().Current().m_position.board); }
    void WaitForRun() {
        QSignalSpy finished(m_pWindow.get(), &TMainWindow::AnalysisFinished);
        QVERIFY(finished.wait(120000));
    }

  public Q_SLOTS:
    void Opened(const QUrl& url) { m_vOpened.push_back(url); }

  private:
    QList<QUrl> m_vOpened;

  private Q_SLOTS:
    void init() {
        qputenv("MOREMATE_HOME", m_dir.path().toUtf8());
        std::ofstream(File()) << kCollection;
        m_pReporter = std::make_unique<CRecordingReporter>();
        TOptions options;
        options.m_shLichessLevels = -1;  // no network
        options.m_nPrepareSolutionDescription = 0;
        m_pWindow = std::make_unique<TMainWindow>(options, *m_pReporter);
        m_pWindow->SetThreads(1);
        QVERIFY(m_pWindow->OpenCollection(File()));
    }

    void cleanup() {
        m_pReporter->QueueAnswer(ReportAnswer::No);  // leave the changes unsaved
        m_pWindow.reset();
    }

    void opensAndNavigates() {
        const TProblemCollection& c = m_pWindow->Collection();
        QCOMPARE(c.Size(), size_t{3});
        QCOMPARE(c.Current().m_nNumber, 1u);
        struct Step {
            const char* action;
            uint32_t number;
        };
        for (const Step& step :
             {Step{"prob.next", 2}, Step{"prob.last", 3}, Step{"prob.next", 3}, Step{"prob.first", 1},
              Step{"prob.prev", 1}, Step{"prob.history", 3}, Step{"prob.return", 1}}) {
            Trigger(step.action);
            QCOMPARE(c.Current().m_nNumber, step.number);
        }
        QVERIFY(m_pWindow->SelectProblemNumber(3));
        QCOMPARE(c.Current().m_nNumber, 3u);
        QVERIFY(!m_pWindow->SelectProblemNumber(77));
        QVERIFY(Reported(*m_pReporter, "There is no problem number 77"));
        QCOMPARE(c.Current().m_nNumber, 3u);
    }

    // Each "Find position in ..." opens its database's search for the problem's position.
    void findsThePositionInOutsideDatabases() {
        QDesktopServices::setUrlHandler("https", this, "Opened");
        for (const char* id : {"pos.findpdb", "pos.findmeson", "pos.findalbrecht", "pos.findyacpdb"})
            Trigger(id);
        QDesktopServices::unsetUrlHandler("https");
        QCOMPARE(m_vOpened.size(), qsizetype{4});
        QCOMPARE(m_vOpened[0].host(), "pdb.dieschwalbe.de");
        QCOMPARE(m_vOpened[0].query(QUrl::FullyDecoded), "expression=WPIECES=3 AND BPIECES=1 AND STIP='#2'");
        QCOMPARE(m_vOpened[1].host(), "www.bstephen.me.uk");
        QCOMPARE(m_vOpened[2].host(), "www.dieschwalbe.de");
        QCOMPARE(m_vOpened[3].toString(QUrl::FullyDecoded),
                 "https://www.yacpdb.org/?search=wKe1 wQa7 wRh1 bKc1");
    }

    void faultyFileIsReported() {
        QVERIFY(!m_pWindow->OpenCollection(m_dir.path().toStdString() + "/missing.cp"));
        QVERIFY(Reported(*m_pReporter, "Error opening file"));
        QCOMPARE(m_pWindow->Collection().File(), File());
    }

    void libraryFailuresShowInTheWindowsLanguage_data() {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("opening");
        QTest::addColumn<QString>("shifting");
        QTest::newRow("Polish") << int(kPolish) << "Błąd otwarcia pliku: "
                                << "Nie można przesunąć pozycji: bierka opuściłaby szachownicę";
        QTest::newRow("Ukrainian") << int(kUkrainian) << "Помилка відкриття файлу: "
                                   << "Позицію не можна зсунути: фігура вийшла б за межі дошки";
        QTest::newRow("English") << int(kEnglish) << "Error opening file: "
                                 << "The position cannot be shifted: a piece would leave the board";
    }

    void libraryFailuresShowInTheWindowsLanguage() {
        QFETCH(int, language);
        QFETCH(QString, opening);
        QFETCH(QString, shifting);
        m_pWindow->SetLanguage(language);
        const std::string missing = m_dir.path().toStdString() + "/missing.cp";
        QVERIFY(!m_pWindow->OpenCollection(missing));
        const CRecordingReporter::TReport report = m_pReporter->Reports().back();
        QCOMPARE(report.sTitle, ReportTitle(ReportKind::Error, language));
        QVERIFY2(report.sText.starts_with(missing + ": " + opening.toStdString() + missing),
                 report.sText.c_str());
        Trigger("pos.left");  // the queen stands on the a-file
        QCOMPARE(m_pWindow->StatusText(), shifting);
    }

    void pastesFenAndUndoes() {
        const std::string before = Fen();
        QApplication::clipboard()->setText("4k3/8/8/8/8/8/8/R3K3 w - - 0 1");
        Trigger("pos.paste");
        QCOMPARE(Fen(), std::string("4k3/8/8/8/8/8/8/R3K3"));
        QVERIFY(m_pWindow->Collection().Modified());
        Trigger("pos.undo");
        QCOMPARE(Fen(), before);
        Trigger("pos.redo");
        QCOMPARE(Fen(), std::string("4k3/8/8/8/8/8/8/R3K3"));
    }

    void pastesMovesOntoTheBoard() {
        QApplication::clipboard()->setText("1. Qa7-f2 Kc1-b1");
        Trigger("pos.paste");
        QCOMPARE(m_pWindow->MovesMade().size(), size_t{2});
        QCOMPARE(m_pWindow->MovesShown(), size_t{2});
        Trigger("prob.back");
        QCOMPARE(m_pWindow->MovesShown(), size_t{1});
    }

    void commentsStayWithTheirLine() {
        QApplication::clipboard()->setText("1. Qa7-f2 Kc1-b1");
        Trigger("pos.paste");
        m_pWindow->SetMoveComment(0, " the key ");
        const QListWidget* moves = m_pWindow->findChild<QListWidget*>();
        QCOMPARE(moves->item(0)->text(), QString("1. Qa7-f2  {the key}"));
        QVERIFY(m_pWindow->MoveComment(1).isEmpty());
        Trigger("prob.back");
        Trigger("prob.back");
        Trigger("prob.comment");
        QVERIFY(Reported(*m_pReporter, "Make a move on the board first"));
        m_pWindow->ClickSquare(48, Qt::LeftButton);  // a7
        m_pWindow->ClickSquare(56, Qt::LeftButton);  // a8: another line
        QVERIFY(m_pWindow->MoveComment(0).isEmpty());
        Trigger("prob.back");
        QApplication::clipboard()->setText("1. Qa7-f2");
        Trigger("pos.paste");
        QCOMPARE(m_pWindow->MoveComment(0), QString("the key"));
        m_pWindow->SetMoveComment(0, "");
        QCOMPARE(moves->item(0)->text(), QString("1. Qa7-f2"));
    }

    void findsProblems_data() {
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("forward");
        QTest::addColumn<uint>("number");  // where the search ends; 1: not found
        QTest::newRow("description") << "third" << true << 3u;
        QTest::newRow("case ignored") << "LONGER" << true << 2u;
        QTest::newRow("number") << "3" << true << 3u;
        QTest::newRow("FEN placement") << "8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1" << true << 3u;
        QTest::newRow("the current one is not found again") << "mate in two" << true << 1u;
        QTest::newRow("nothing before the first") << "third" << false << 1u;
        QTest::newRow("blank") << " " << true << 1u;
    }

    void findsProblems() {
        QFETCH(QString, query);
        QFETCH(bool, forward);
        QFETCH(uint, number);
        QCOMPARE(m_pWindow->FindProblem(query, forward), number != 1u);
        QCOMPARE(m_pWindow->Collection().Current().m_nNumber, number);
        QCOMPARE(Reported(*m_pReporter, "matches"), number == 1u);
    }

    void findsSimilarAndRemovesProblemsPresentElsewhere() {
        const auto entry = [](const char* fen) {
            ProblemEntry e;
            ReadFen(fen, e.m_position.board);
            return e;
        };
        const std::vector<ProblemEntry> entries = {
            entry("4k3/8/8/8/8/8/8/R3K3"), entry("4k3/8/8/8/8/8/8/R3K2B"),      // + a piece: 1 square
            entry("4k3/8/8/8/8/8/8/1R2K1B1"), entry("4k3/8/8/8/8/8/R7/4K1BB"),  // 3 squares, 4 squares
            entry("4k3/8/8/8/8/8/8/4K2R")};                                     // a1-h1: 2 squares
        QCOMPARE(SimilarProblems(entries, 0), (std::vector<size_t>{1, 4, 2}));
        // The other file holds problem 3 under another number, and problem 2 as a #4.
        const std::filesystem::path other = std::filesystem::path(m_dir.path().toStdString()) / "other.cp";
        std::ofstream(other) << "UTF-8\n\n9 #3\n{\n\tFEN: 8/8/8/8/P7/3PQ3/3K4/k7 w - - 0 1\n}\n\n"
                                "8 #4\n{\n\tFEN: 1k2K3/8/5R2/R4r2/8/5P2/5P2/8 w - - 0 1\n}\n";
        Trigger("prob.last");
        QCOMPARE(m_pWindow->RemovePresentIn(other), size_t{1});
        QCOMPARE(m_pWindow->Collection().Size(), size_t{2});
        QCOMPARE(m_pWindow->Collection().Current().m_nNumber, 2u);
        QVERIFY(m_pWindow->Collection().Modified());
    }

    void bulkPasteTakesTheGoodPiecesAndNamesTheBad_data() {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QList<uint>>("stipulations");  // of the problems added, in order
        QTest::newRow("all") << "pos.bulk" << QList<uint>{2, 3, 3};
        QTest::newRow("prized only") << "pos.bulkprized" << QList<uint>{3};
    }

    void bulkPasteTakesTheGoodPiecesAndNamesTheBad() {
        QFETCH(QString, action);
        QFETCH(QList<uint>, stipulations);
        QApplication::clipboard()->setText(
            "5 #2\n{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n\n"
            "4k3/8/8/8/8/8/8/R3K3 w - - 0 1 #3\n\n"
            "8/8/8/8/8/8/8/8 w - - 0 1\n\n"                           // no kings
            "6 #9\n{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n\n"  // too long
            "\\begin{diagram}\n\\author{A. B.}\n\\award{1st Prize}\n\\stip{\\#3}\n"
            "%\\fen{8/8/8/8/P7/3PQ3/3K4/k7}\n\\end{diagram}\n"
            "hello world\n");
        Trigger(action.toUtf8().constData());
        const TProblemCollection& c = m_pWindow->Collection();
        QCOMPARE(c.Size(), size_t(3 + stipulations.size()));
        QCOMPARE(c.CurrentIndex(), size_t{3});
        for (qsizetype i = 0; i < stipulations.size(); ++i) {
            QCOMPARE(c.At(3 + size_t(i)).StipulationMoves(), int(stipulations[i]));
            QCOMPARE(c.At(3 + size_t(i)).m_nNumber, uint32_t(4 + i));
        }
        const std::string report = m_pReporter->Reports().back().sText;
        QVERIFY2(report.find("8/8/8/8/8/8/8/8 w - - 0 1: ") != std::string::npos, report.c_str());
        QVERIFY2(report.find("6 #9: #9 > MaxStipulationForBulkInsert (6)") != std::string::npos,
                 report.c_str());
        QVERIFY2(report.find("hello world: ") != std::string::npos, report.c_str());
    }

    // The threads tool: its upper half adds a thread, its lower half takes one, never below one;
    // the box numbers the moves made by the moves left.
    void toolsStepThreadsAndNumberMoves() {
        auto* threads = m_pWindow->findChild<QToolButton*>("tool.threads");
        QTest::mouseClick(threads, Qt::LeftButton, {}, QPoint(threads->width() / 2, 1));
        QCOMPARE(m_pWindow->Threads(), 2);
        for (int i = 0; i < 2; ++i)
            QTest::mouseClick(threads, Qt::LeftButton, {},
                              QPoint(threads->width() / 2, threads->height() - 2));
        QCOMPARE(m_pWindow->Threads(), 1);
        QCOMPARE(threads->text(), QString("1"));
        QApplication::clipboard()->setText("1. Qa7-f2 Kc1-b1");
        Trigger("pos.paste");
        m_pWindow->findChild<QCheckBox*>("tool.remaining")->setChecked(true);
        const QListWidget* moves = m_pWindow->findChild<QListWidget*>();
        QCOMPARE(moves->item(0)->text(), QString("2. Qa7-f2"));
        QCOMPARE(moves->item(1)->text(), QString("2... Kc1-b1"));
    }

    void copiesTheRecordWithOrWithoutAnnotations_data() {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("variant");
        QTest::addColumn<bool>("tag");
        QTest::newRow("copy") << "pos.copy" << true << true;
        QTest::newRow("without variants") << "pos.copynovar" << false << true;
        QTest::newRow("without variants or tags") << "pos.copynotags" << false << false;
    }

    void copiesTheRecordWithOrWithoutAnnotations() {
        QFETCH(QString, action);
        QFETCH(bool, variant);
        QFETCH(bool, tag);
        QApplication::clipboard()->setText(
            "9 #2\n//#TAGS\n//#miniature\n//!VARIANTS\n//!Main variant: 1. Qa7-f2 Kc1-b1\n//!ENDVARIANTS\n"
            "{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n");
        Trigger("pos.paste");
        QCOMPARE(m_pWindow->Collection().Current().m_nNumber, 1u);  // the number stays
        Trigger(action.toUtf8().constData());
        const QString copied = QApplication::clipboard()->text();
        QCOMPARE(copied.contains("Main variant"), variant);
        QCOMPARE(copied.contains("miniature"), tag);
    }

    void pastesAsMirror() {
        QApplication::clipboard()->setText("4k3/8/8/8/8/8/8/R3K3 w - - 0 1");
        Trigger("pos.pastemirror");
        QCOMPARE(Fen(), std::string("3k4/8/8/8/8/8/8/3K3R"));
        QVERIFY(m_pWindow->Collection().Current().m_sDescription.starts_with("Mirror: "));
        QApplication::clipboard()->setText("no position");
        Trigger("pos.pastemirror");
        QVERIFY(Reported(*m_pReporter, "The clipboard holds no position"));
    }

    void editsAndUndoes_data() {
        QTest::addColumn<QString>("edit");
        QTest::addColumn<QString>("after");  // the FEN, or the stipulation "#n"
        QTest::newRow("stipulation up") << "pos.stipup"
                                        << "#3";
        QTest::newRow("stipulation down") << "pos.stipdown"
                                          << "#1";
        QTest::newRow("stipulation up by 10") << "pos.stipup10"
                                              << "#12";
        QTest::newRow("rotate") << "pos.rotate"
                                << "6Q1/8/k7/8/K7/8/8/R7";
        QTest::newRow("swap") << "pos.swap"
                              << "2K1k2r/8/8/8/8/8/q7/8";
        QTest::newRow("setting mode") << "setting"
                                      << "8/Q7/8/8/8/8/8/R1k1K2R";
        QTest::newRow("drag a7-b7") << "drag"
                                    << "8/1Q6/8/8/8/8/8/2k1K2R";
        QTest::newRow("drag off the board") << "drag off"
                                            << "8/8/8/8/8/8/8/2k1K2R";
        QTest::newRow("shift up") << "pos.up"
                                  << "Q7/8/8/8/8/8/2k1K2R/8";
        QTest::newRow("shift left: the queen would leave") << "pos.left"
                                                           << "8/Q7/8/8/8/8/8/2k1K2R";
    }

    void editsAndUndoes() {
        QFETCH(QString, edit);
        QFETCH(QString, after);
        const ProblemEntry original = m_pWindow->Collection().Current();
        if (edit == "setting") {
            Trigger("pos.setting");
            QVERIFY(m_pWindow->SettingMode());
            m_pWindow->Palette()->Choose(MakePiece(kWhite, kRook));
            m_pWindow->ClickSquare(0, Qt::LeftButton);  // a1
        } else if (edit.startsWith("drag")) {
            m_pWindow->DropPiece(48, 49, MakePiece(kWhite, kQueen));  // refused outside the setting mode
            Trigger("pos.setting");
            m_pWindow->DropPiece(48, edit == "drag" ? 49 : kNoSquare, MakePiece(kWhite, kQueen));
        } else {
            Trigger(edit.toUtf8().constData());
        }
        const ProblemEntry& now = m_pWindow->Collection().Current();
        if (after.startsWith('#'))
            QCOMPARE(now.StipulationMoves(), after.mid(1).toInt());
        else
            QCOMPARE(QString::fromStdString(Fen()), after);
        Trigger("pos.undo");
        QVERIFY(m_pWindow->Collection().Current() == original);
    }

    void clickClickMakesAMove() {
        m_pWindow->ClickSquare(48, Qt::LeftButton);  // a7
        m_pWindow->ClickSquare(13, Qt::LeftButton);  // f2
        QCOMPARE(m_pWindow->MovesMade().size(), size_t{1});
        m_pWindow->ClickSquare(2, Qt::LeftButton);   // c1: Black's king
        m_pWindow->ClickSquare(20, Qt::LeftButton);  // e3: not a king move
        QCOMPARE(m_pWindow->MovesMade().size(), size_t{1});
    }

    void solvesAndWritesTheKey() {
        Trigger("prob.solve");
        QVERIFY(m_pWindow->Analysing());
        WaitForRun();
        QVERIFY(!m_pWindow->Analysing());
        const ProblemEntry& entry = m_pWindow->Collection().Current();
        QCOMPARE(entry.m_answerKind, AnswerKind::Full);
        QCOMPARE(entry.m_vAnswer.size(), size_t{1});
        QCOMPARE(int(entry.m_vAnswer[0].from), 48);
        QCOMPARE(int(entry.m_vAnswer[0].to), 13);
        QVERIFY(ReadVariants(entry).variants.count(kMainVariantName) == 1);
        QVERIFY(m_pWindow->ProgressText().contains("Qa7-f2"));
        Trigger("file.save");
        const std::string saved = ReadText(File());
        QVERIFY(saved.find("Answer: a7-f2") != std::string::npos);
        QVERIFY(saved.find("//!Main variant: 1. Qa7-f2") != std::string::npos);
        QVERIFY(std::filesystem::exists(File().string() + ".BAK"));
        QVERIFY(!m_pWindow->Collection().Modified());
    }

    void runResultInTheWindowsLanguage() {
        m_pWindow->SetLanguage(kPolish);
        Trigger("prob.solve");
        WaitForRun();
        const QString progress = m_pWindow->ProgressText();
        QVERIFY2(
            progress.startsWith("Silnik zakończył pracę: rozwiązane\nWątek rozwiązujący zadanie 1 zakończył "
                                "pracę pomyślnie.\n1 – liczba znalezionych rozwiązań zadania 1\nQa7-f2"),
            qPrintable(progress));
        Trigger("adv.globalstatus");
        const std::string status = m_pReporter->Reports().back().sText;
        QVERIFY2(status.starts_with("Rejestr globalny: wczytane typy pozycji: ") &&
                     status.find('%') == std::string::npos,
                 status.c_str());
    }

    void solvesAndShowsTheWholeMainVariant() {
        Trigger("prob.whole");
        WaitForRun();
        QCOMPARE(m_pWindow->MovesMade().size(), size_t{3});  // Qa7-f2, Black's reply, the mate
        QCOMPARE(m_pWindow->MovesShown(), size_t{3});
        for (int i = 0; i < 3; ++i) Trigger("prob.back");  // a plain run shows the start again
        Trigger("prob.solve");
        WaitForRun();
        QCOMPARE(m_pWindow->MovesShown(), size_t{0});
    }

    void findsBlacksDefenceAfterWhitesMove() {
        Trigger("prob.defence");  // no White move made yet
        QVERIFY(Reported(*m_pReporter, "Make White's move on the board"));
        QApplication::clipboard()->setText("Qa7-a1");
        Trigger("pos.paste");
        Trigger("prob.solve");  // F5 with Black to move: the defence
        QVERIFY(m_pWindow->Analysing());
        WaitForRun();
        QVERIFY(Reported(*m_pReporter, "Thread looking for black's defence in problem 1"));
        QVERIFY(m_pWindow->ProgressText().contains("Thread looking for black's defence"));
        QCOMPARE(m_pWindow->Collection().Current().m_answerKind, AnswerKind::None);  // nothing written
        QApplication::clipboard()->setText("Qa7-a3");  // one reply refutes, the other is mated by Ke1-d2
        Trigger("pos.paste");
        Trigger("prob.thorough");
        WaitForRun();
        QCOMPARE(m_pWindow->ProgressText().section("Every reply:\n", 1),
                 QString("Kc1-c2 (no mate)\nKc1-b1 (#1)"));
    }

    // Once a first move is being analysed, it can be swapped with the next one, moved to the end,
    // or skipped for one of the moves still waiting, chosen from a list.
    void steersTheFirstMovesFromTheAnalysisMenu() {
        Trigger("prob.next");
        Trigger("pos.stipup");  // a #6 that keeps one thread busy for seconds
        QApplication::clipboard()->setText("8/k7/8/1K5B/5B2/8/8/N7 w - - 0 1");
        Trigger("pos.paste");
        Trigger("prob.all");
        // Refused while no first move is in progress, as at the start or right after a change: each
        // command is repeated until it is taken, and then no more.
        const auto steered = [this](const char* id, const char* failure) {
            const int failures = Count(*m_pReporter, failure);
            Trigger(id);
            return Count(*m_pReporter, failure) == failures;
        };
        bool swapped = false, moved = false, skipped = false;
        QTRY_VERIFY_WITH_TIMEOUT(swapped = swapped || steered("ctx.swapnext", kReorderFailedText), 60000);
        QTRY_VERIFY(moved = moved || steered("ctx.movetoend", kReorderFailedText));
        QStringList offered;
        const auto chooseTheLast = [this, &offered, &steered] {
            QTimer::singleShot(0, m_pWindow.get(), [this, &offered] {
                auto* ask = m_pWindow->findChild<QInputDialog*>();
                if (!ask) return;
                offered = ask->comboBoxItems();
                ask->setTextValue(offered.last());
                ask->accept();
            });
            return steered("ctx.skipto", kSkipFailedText);
        };
        QTRY_VERIFY(skipped = skipped || chooseTheLast());
        QVERIFY(offered.size() > 1);
        QVERIFY(m_pWindow->Analysing());
        Trigger("prob.stop");
        WaitForRun();
    }

    void refusesEditsDuringARun() {
        Trigger("prob.next");  // the #5
        const ProblemEntry before = m_pWindow->Collection().Current();
        Trigger("prob.all");
        QVERIFY(m_pWindow->Analysing());
        Trigger("prob.settings");
        QVERIFY(Reported(*m_pReporter, "Problem 2 (#5)\nMode: all solutions\nThreads: 1"));
        Trigger("prob.pauseone");  // the stop below ends the held thread too
        for (const char* id : {"pos.stipup", "pos.paste", "pos.rotate", "pos.setting", "file.default"})
            Trigger(id);
        QVERIFY(m_pWindow->Collection().Current() == before);
        QVERIFY(!m_pWindow->SettingMode());
        QCOMPARE(Count(*m_pReporter, "Analysis pending - position cannot be modified"), 5);
        m_pWindow->SetLanguage(kPolish);  // the tools' refusal speaks the window's language too
        Trigger("adv.quicktest");
        QVERIFY(Reported(*m_pReporter, "Trwa rozwiązywanie."));
        m_pWindow->SetLanguage(kEnglish);
        // Leaving the problem asks first: no keeps it and the run.
        m_pReporter->QueueAnswer(ReportAnswer::No);
        Trigger("prob.next");
        QCOMPARE(m_pWindow->Collection().Current().m_nNumber, 2u);
        QVERIFY(m_pWindow->Analysing());
        QVERIFY(Reported(*m_pReporter, "Search for mate pending. Do you want to stop this task?"));
        m_pReporter->QueueAnswer(ReportAnswer::Yes);
        Trigger("prob.next");
        QCOMPARE(m_pWindow->Collection().Current().m_nNumber, 3u);
        WaitForRun();
        QVERIFY(!m_pWindow->Analysing());
    }

    void languageSwitchRelabelsEveryItem() {
        m_pWindow->SetLanguage(kEnglish);
        m_pWindow->ClickSquare(48, Qt::LeftButton);  // a move made on the board survives the switch
        m_pWindow->ClickSquare(13, Qt::LeftButton);
        const QString boardTip = m_pWindow->Board()->toolTip();
        std::map<QAction*, QString> english;
        for (QAction* a : m_pWindow->Actions()) english[a] = a->text();
        for (QAction* a : m_pWindow->menuBar()->actions()) english[a] = a->text();
        for (int language : {kPolish, kUkrainian}) {
            Trigger(language == kPolish ? "lang.polish" : "lang.ukrainian");
            QCOMPARE(m_pWindow->Language(), language);
            for (const auto& [action, text] : english) {
                QVERIFY2(!action->text().isEmpty(), qPrintable(action->objectName()));
                QVERIFY2(action->text() != text, qPrintable(text));
            }
            QVERIFY(m_pWindow->Board()->toolTip() != boardTip);
            QCOMPARE(m_pWindow->MovesMade().size(), size_t{1});
        }
        Trigger("lang.english");
        for (const auto& [action, text] : english) QCOMPARE(action->text(), text);
        for (int language : {kPolish, kEnglish, kUkrainian}) {  // Alt and a letter opens one popup only
            std::set<QChar> letters;
            for (const TTextRow& row : TextTable()) {
                const QString text = UiText(row.id, language);
                if (!std::string_view(row.id).starts_with("menu.")) continue;
                QVERIFY2(letters.insert(text.at(text.indexOf('&') + 1).toLower()).second, qPrintable(text));
            }
        }
        // A form left in English shows as two equal forms; only a setting's own name stays as it is.
        std::set<std::string_view> ids;
        for (const TTextRow& row : TextTable()) {
            QVERIFY2(ids.insert(row.id).second, row.id);
            const std::set<std::string_view> forms{row.polish, row.english, row.ukrainian};
            QVERIFY2(!forms.contains(""), row.id);
            QVERIFY2(forms.size() == 3 || row.id == std::string_view("heur.ffmothers"), row.id);
        }
    }

    // Every help item has its page; the priority items set the process's class.
    void helpPagesAndPriority() {
        for (const char* id : {"help.manual", "help.readme", "help.faq", "help.hints", "help.modes"})
            QVERIFY2(std::filesystem::is_regular_file(TMainWindow::HelpPagePath(id)), id);
        Trigger("prio.low");  // lowering needs no privilege
        QCOMPARE(CurrentPriority(), ProcessPriority::Low);
        QVERIFY(m_pWindow->Action("prio.low")->isChecked());
        QVERIFY(!m_pWindow->Action("prio.normal")->isChecked());
    }

    void closingOffersToSave() {
        Trigger("pos.stipup");
        m_pReporter->QueueAnswer(ReportAnswer::Cancel);
        QVERIFY(!m_pWindow->close());
        m_pReporter->QueueAnswer(ReportAnswer::Yes);
        QVERIFY(m_pWindow->close());
        QVERIFY(ReadText(File()).find("1 #3") != std::string::npos);
    }

    void closingWithoutSavingLeavesTheFile() {
        Trigger("pos.stipup");
        m_pReporter->QueueAnswer(ReportAnswer::No);
        QVERIFY(m_pWindow->close());
        QVERIFY(ReadText(File()).find("1 #3") == std::string::npos);
    }

    void secondInstanceNoticeFollowsTheOption_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("box");
        QTest::addColumn<bool>("status");
        QTest::newRow("no warning") << 0 << false << false;
        QTest::newRow("message box") << 1 << true << false;
        QTest::newRow("status bar") << 2 << false << true;
    }

    void secondInstanceNoticeFollowsTheOption() {
        QFETCH(int, mode);
        QFETCH(bool, box);
        QFETCH(bool, status);
        CRecordingReporter next;
        std::string shown;
        CInstanceNoticeFilter filter(next, mode, [&shown](const std::string& text) { shown = text; });
        filter.Report("Information", kSecondInstanceReadOnly, ReportButtons::Ok);
        filter.Report("Warning", "another report", ReportButtons::Ok);
        QCOMPARE(next.Reports().size(), box ? size_t{2} : size_t{1});
        QCOMPARE(next.Reports().back().sText, std::string("another report"));
        QCOMPARE(shown == kSecondInstanceReadOnly, status);
    }

    void peekedLines() {
        const std::string all = "Observed: 1.Qb6-f6 2.Qf6-d8 | 1.Kd2-c3 | 1.Ra1-a8";
        const std::pair<int, std::string> cases[] = {{0, all},
                                                     {1, "Observed: 1.Qb6-f6 2.Qf6-d8"},
                                                     {2, "Observed: 1.Kd2-c3"},
                                                     {3, "Observed: 1.Ra1-a8"},
                                                     {4, ""}};
        for (const auto& [peek, shown] : cases) QCOMPARE(PeekedLines(all, peek), shown);
        QCOMPARE(PeekedLines("", 2), std::string());
    }

    void startLogLines() {
        std::tm when{};
        when.tm_year = 126;
        when.tm_mon = 10;
        when.tm_mday = 25;
        when.tm_hour = 9;
        when.tm_min = 5;
        when.tm_sec = 7;
        when.tm_isdst = -1;
        const std::time_t time = std::mktime(&when);
        QCOMPARE(StartLogLine(true, time), std::string("Program opened (2026-11-25 09:05:07)"));
        QCOMPARE(StartLogLine(false, time), std::string("Program close (2026-11-25 09:05:07)"));
    }

    void optionsDialogChecksItsFields_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("message");  // empty: saved
        QTest::newRow("precalc memory") << "opt.precalcmem"
                                        << "101" << kBadPrecalcMemRatio;
        QTest::newRow("temporary memory") << "opt.tempmem"
                                          << "-1" << kBadTempRegMemRatio;
        QTest::newRow("scheduler levels") << "opt.sched"
                                          << "10"
                                          << "Invalid number of scheduler levels";
        QTest::newRow("auto save") << "opt.automin"
                                   << "-5" << kBadAutoSave;
        QTest::newRow("accepted") << "opt.tempmem"
                                  << "30"
                                  << "";
    }

    void optionsDialogChecksItsFields() {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(QString, message);
        TOptions options;
        int threads = 2;
        TOptionsWindow dialog(options, threads, kEnglish, *m_pReporter, nullptr);
        dialog.Field(field.toStdString())->setText(value);
        const std::filesystem::path ini = std::filesystem::path(m_dir.path().toStdString()) / "options.ini";
        std::filesystem::remove(ini);
        QCOMPARE(dialog.SaveSettings(), message.isEmpty());
        if (message.isEmpty()) {
            QCOMPARE(options.m_nMaxMemRatioForTempReg, 30);
            QVERIFY(ReadText(ini).find("MaxMemRatioForTempReg=30") != std::string::npos);
        } else {
            QVERIFY(Reported(*m_pReporter, message.toStdString()));
            QVERIFY(!std::filesystem::exists(ini));
        }
    }

    // AddTestCrashHandlerMenuItem=1 adds the item to the Help menu, after the threads.
    void crashTestItemOnlyWithItsOption() {
        QVERIFY(!m_pWindow->Action("help.crashtest"));
        TOptions options;
        options.m_shLichessLevels = -1;
        options.m_bAddTestCrashHandlerMenuItem = true;
        TMainWindow window(options, *m_pReporter);
        QAction* item = window.Action("help.crashtest");
        QVERIFY(item);
        const QList<QAction*> help = window.Menu("menu.help")->actions();
        QCOMPARE(help.indexOf(item), help.indexOf(window.Action("help.threads")) + 1);
        QCOMPARE(item->text(), QString("Test crash handler..."));
    }

    // The item's crash, chosen in its dialog, leaves a complete log, and the crashed process
    // becomes the dialog program with the message: here a script that keeps it.
    void crashTestItemCrashesIntoTheLog() {
        const std::filesystem::path folder = m_dir.path().toStdString();
        const std::filesystem::path dialog = folder / "dialog.sh";
        std::ofstream(dialog) << "#!/bin/sh\nprintf %s \"$2\" >shown\nexit 3\n";
        std::filesystem::permissions(dialog, std::filesystem::perms::owner_all);
        TOptions options;
        options.m_shLichessLevels = -1;
        options.m_bAddTestCrashHandlerMenuItem = true;
        TMainWindow window(options, *m_pReporter);
        const pid_t child = fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            if (chdir(folder.c_str()) != 0) _exit(99);
            diagnostics::InstallCrashHandler(options, dialog);
            QTimer::singleShot(0, &window, [&window] {
                auto* ask = window.findChild<QInputDialog*>();
                if (!ask) _exit(98);
                ask->setTextValue("segv");
                ask->accept();
            });
            window.Action("help.crashtest")->trigger();
            _exit(97);  // no crash
        }
        int status = 0;
        waitpid(child, &status, 0);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), diagnostics::kExitCrash);
        std::string log;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().string().starts_with("crash_log_"))
                log = entry.path().filename().string();
        QVERIFY(!log.empty());
        QVERIFY(ReadText(folder / log).find("Exception Code: 0xC0000005 (Access Violation)") !=
                std::string::npos);
        QCOMPARE(ReadText(folder / "shown"),
                 "Unhandled exception caught: Access Violation (SIGSEGV)\n\nDetails written to " + log +
                     "\n\nProgram will now be terminated.\n");
    }
};

QTEST_MAIN(TMainWindowTest)
#include "main_window_test.moc"
