// The heuristics dialog's checks, and the window's annotation and register commands driven
// through their actions on the offscreen platform; input dialogs are answered by a timer.
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <fstream>

#include "core/fen.h"
#include "engine/heuristics/heuristic_text.h"
#include "engine/run/run_texts.h"
#include "precalc/global/global_registers.h"
#include "problems/annotations/problem_tags.h"
#include "problems/annotations/problem_variants.h"
#include "problems/annotations/register_reference.h"
#include "problems/format/collection_reader.h"
#include "tests/ui/window_test_support.h"
#include "ui/heuristics_window.h"
#include "ui/main_window.h"

using namespace moremate;
using namespace moremate::ui;
using moremate::ui::test::Reported;

namespace {

const char* const kCollection = test::kTwoProblems;

// Answers the next input dialogs with `texts`, one each, in turn; gives up when none opens.
void AnswerInputs(QStringList texts, int tries = 100) {
    QTimer::singleShot(0, [texts, tries] {
        auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        if (!dialog) return void(tries > 0 ? AnswerInputs(texts, tries - 1) : void());
        dialog->setTextValue(texts.front());
        dialog->accept();
        if (texts.size() > 1) AnswerInputs(texts.mid(1));
    });
}

}  // namespace

class TDialogsTest : public QObject {
    Q_OBJECT

  private:
    QTemporaryDir m_dir;
    std::unique_ptr<CRecordingReporter> m_pReporter;
    std::unique_ptr<TMainWindow> m_pWindow;

    std::filesystem::path Folder() const { return m_dir.path().toStdString(); }
    std::filesystem::path File() const { return Folder() / "test.cp"; }
    void Trigger(const char* id, const QStringList& answers = {}) {
        if (!answers.isEmpty()) AnswerInputs(answers);
        m_pWindow->Action(id)->trigger();
    }
    // The first problem as the saved file gives it back.
    ProblemEntry Saved() {
        Trigger("file.save");
        std::vector<ProblemEntry> entries;
        ReadCollectionFile(File(), entries, false, {});
        return entries.at(0);
    }

  private Q_SLOTS:
    void init() {
        qputenv("MOREMATE_HOME", m_dir.path().toUtf8());
        std::ofstream(File()) << kCollection;
        m_pReporter = std::make_unique<CRecordingReporter>();
        TOptions options;
        options.m_shLichessLevels = -1;
        options.m_nPrepareSolutionDescription = 0;
        m_pWindow = std::make_unique<TMainWindow>(options, *m_pReporter);
        m_pWindow->SetThreads(1);
        QVERIFY(m_pWindow->OpenCollection(File()));
    }

    void cleanup() {
        m_pReporter->QueueAnswer(ReportAnswer::No);
        m_pWindow.reset();
    }

    void heuristicsDialogChecksItsFields_data() {
        QTest::addColumn<QStringList>("checked");  // "!" in front: unchecked
        QTest::addColumn<QString>("field");        // "id=text"
        QTest::addColumn<QString>("outcome");      // a message shown, or the chosen set's text ("SH_...")
        QTest::newRow("king move and edge") << QStringList{"heur.kingmove", "heur.outofedge"} << ""
                                            << "Conflict of heuristics (\"Don't let bl.king move (unless "
                                               "immed.mate)\" and \"Don't let bl.king out of the edge\")";
        QTest::newRow("ext.edge and move unless")
            << QStringList{"heur.outofextedge", "heur.moveunless"} << ""
            << "Conflict of heuristics: select only one of 'Don't let black king out of ext.edge' and "
               "'(Don't let black king) move unless back to the edge'";
        QTest::newRow("move unless") << QStringList{"heur.moveunless", "heur.inclcorner"} << ""
                                     << "SH_KEEPKINGWITHINEXTEDGE(incl.corner,strict)";
        QTest::newRow("allow exc alone")
            << QStringList{"heur.allowexc"} << ""
            << "Heuristics 'Don't let black king move' is off, while 'allow exc' is on.";
        QTest::newRow("corner") << QStringList{"heur.nearcorner"} << "heur.nearcorner=x"
                                << "Invalid maximum distance from corner";
        QTest::newRow("duplicate") << QStringList{"heur.unblock"} << "heur.unblock=e7,e7"
                                   << "Duplicate square: e7";
        QTest::newRow("ffm count") << QStringList{"heur.ffm"} << "heur.ffm=9"
                                   << "Number of heuristics relaxations for FFM is too large (max = 6)";
        QTest::newRow("taken") << QStringList{"heur.kingmove", "heur.allowexc", "heur.3moves",
                                              "heur.nearcorner"}
                               << "heur.nearcorner=3S"
                               << "SH_DONTLETKINGMOVE(excptns), SH_3MOVESTOMATE, SH_KEEPKINGNEARCORNER(3S)";
        QTest::newRow("flag") << QStringList{"heur.surrounded", "heur.surroundstrict", "!heur.relax"} << ""
                              << "SH_ASSERTBLACKKINGSURROUNDED(strict)";
        QTest::newRow("one colour unchosen")
            << QStringList{"heur.onecolor"} << ""
            << "Choose the squares of 'One color play possible': white squares only, black squares only";
        QTest::newRow("sea snake squares")
            << QStringList{"heur.seasnake"} << "heur.seasnake=d2,f2"
            << "Sea snake: the approach and the turn-back square must be neighbours.";
        QTest::newRow("zugzwang move") << QStringList{"heur.zugzwang"} << "heur.zugzwang=Kb1-c1"
                                       << "Invalid move for SH_ZUGZWANG";
        QTest::newRow("zugzwang by") << QStringList{"heur.zugzwang"} << "heur.zugzwang=Ka1-b1"
                                     << "Invalid number of the move by which SH_ZUGZWANG";
        QTest::newRow("partially alone") << QStringList{"heur.ffm", "heur.ffmpartially"} << "heur.ffm=0"
                                         << "'Partially' applies to '-WithOtherHeuristics'";
        QTest::newRow("ffm with others") << QStringList{"heur.ffm", "heur.ffmothers"} << "heur.ffm=0"
                                         << "SH_FINDFORCEDMATE(#1-WithOtherHeuristics)";
        QTest::newRow("ffm note")
            << QStringList{"heur.ffm", "!heur.relax"} << "heur.ffm=2"
            << "Note: relaxation of heuristics is off, so setting for FFM (2 time(s)) will be "
               "ignored";
    }

    void heuristicsDialogChecksItsFields() {
        QFETCH(QStringList, checked);
        QFETCH(QString, field);
        QFETCH(QString, outcome);
        TChessboard board;
        QVERIFY(ReadFen("7k/8/8/8/8/8/8/K7 w - - 0 1", board));
        THeuristicsWindow dialog({}, board, std::nullopt, kEnglish, *m_pReporter);
        for (const QString& id : checked)
            dialog.Check(QString(id).remove('!').toStdString())->setChecked(!id.startsWith('!'));
        if (!field.isEmpty())
            dialog.Field(field.section('=', 0, 0).toStdString())->setText(field.section('=', 1));
        const bool taken = dialog.TakeSet();
        QCOMPARE(taken, outcome.startsWith("SH_") || outcome.startsWith("Note"));
        if (outcome.startsWith("SH_"))
            QCOMPARE(QString::fromStdString(HeuristicSetText(dialog.Chosen())), outcome);
        else
            QVERIFY(Reported(*m_pReporter, outcome.toStdString()));
        QCOMPARE(dialog.Relaxes(), !checked.contains("!heur.relax"));
    }

    // The colour mode's list and the fields of the sea snake and the zugzwang reach the chosen set.
    void heuristicsDialogTakesPatternFields() {
        TChessboard board;
        QVERIFY(ReadFen("7k/8/8/8/8/8/8/K7 w - - 0 1", board));
        THeuristicsWindow dialog({}, board, std::nullopt, kEnglish, *m_pReporter);
        for (const char* id : {"heur.onecolor", "heur.seasnake", "heur.zugzwang", "heur.relax"})
            dialog.Check(id)->setChecked(true);
        dialog.ColourMode()->setCurrentIndex(static_cast<int>(TColourMode::SeparatedBlackBishop));
        dialog.Field("heur.seasnake")->setText("b2 c2");
        dialog.Field("heur.pendulum")->setText("g7,h7");
        dialog.Field("heur.zugzwang")->setText("Ka1-b1");
        dialog.Field("heur.zugzwangby")->setText("2");
        QVERIFY(dialog.TakeSet());
        QCOMPARE(QString::fromStdString(HeuristicSetText(dialog.Chosen())),
                 "SH_ONECOLORPLAYPOSSIBLE(SeparatedBlackBishop), SH_SEASNAKE(B2,C2), SH_ZUGZWANG");
        const THeuristicParameters& p = dialog.Chosen().params;
        QCOMPARE(int(p.seaSnake.pendulum[1]), 55);  // h7
        QVERIFY(p.zugzwangSet);
        QCOMPARE(int(p.zugzwangSquares[1]), int(kWhite | kKing));  // b1
        QCOMPARE(int(p.zugzwangAfterMove), 2);
    }

    void variantsAreSavedRenamedAndDeleted() {
        QApplication::clipboard()->setText("1. Qa7-f2 Kc1-b1");
        Trigger("pos.paste");
        Trigger("var.saveas", {"My line"});
        QCOMPARE(ReadVariants(Saved()).variants.at("My line").size(), size_t{2});
        Trigger("var.rename", {"My line", "Their line"});  // the variant, then its new name
        QCOMPARE(ReadVariants(Saved()).variants.count("Their line"), size_t{1});
        m_pReporter->QueueAnswer(ReportAnswer::Yes);
        Trigger("var.delete", {"Their line"});
        QVERIFY(Reported(*m_pReporter, "Do you really want to delete variant"));
        QVERIFY(ReadVariants(Saved()).variants.empty());
    }

    void tagsAndSortIndicationsReachTheFile_data() {
        QTest::addColumn<QString>("indications");
        QTest::addColumn<QString>("stored");  // empty: refused
        QTest::newRow("two") << "~1. Qa7-f2+, e1-e2"
                             << "~Qa7-f2+; e1-e2";
        QTest::newRow("faulty") << "zz9"
                                << "";
    }

    void tagsAndSortIndicationsReachTheFile() {
        QFETCH(QString, indications);
        QFETCH(QString, stored);
        m_pReporter->QueueAnswer(ReportAnswer::Yes);  // a tag new to the collection
        Trigger("prob.addtag", {"theme"});
        Trigger("adv.sortind", {indications});
        const ProblemEntry saved = Saved();
        QCOMPARE(Tags(saved), std::vector<std::string>{"theme"});
        QCOMPARE(QString::fromStdString(saved.m_annotations.sSortIndications.value_or("")), stored);
        QCOMPARE(Reported(*m_pReporter, "Invalid description of SortIndication: "), stored.isEmpty());
    }

    void registerCommandsRefusedDuringARunThenPinned() {
        Trigger("prob.next");
        Trigger("prob.all");
        QVERIFY(m_pWindow->Analysing());
        for (const char* id : {"adv.savereg", "adv.pinreg", "adv.readreg", "adv.unpinreg"}) Trigger(id);
        QCOMPARE(int(m_pReporter->Reports().size()), 4);
        QVERIFY(Reported(*m_pReporter, kSaveRefusedText));
        QSignalSpy finished(m_pWindow.get(), &TMainWindow::AnalysisFinished);
        Trigger("prob.stop");
        QVERIFY(finished.wait(60000));
        Trigger("adv.pinreg");  // saved on the engine thread, then the problem refers to the file
        QVERIFY(finished.wait(60000));
        const std::optional<uint32_t> number = TmpRegNumber(m_pWindow->Collection().Current());
        QVERIFY(number && std::filesystem::exists(ReferencedRegisterFile(*number)));
        Trigger("adv.readreg");  // the pinned file
        QVERIFY(finished.wait(60000));
        QVERIFY(Reported(*m_pReporter, "File has been read: "));
        Trigger("adv.unpinreg");
        QVERIFY(!m_pWindow->Collection().Current().m_annotations.sTmpReg);
    }

    void quickRegressionTestReportsIntoTheProgressArea() {
        const std::filesystem::path was = std::filesystem::current_path();
        std::filesystem::current_path(Folder());  // the test's log goes to the working folder
        std::ofstream(Folder() / "one.cp") << "UTF-8\n\n1 #2\n{\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n"
                                              "\tAnswer: a7-f2\n}\n";
        QVERIFY(m_pWindow->OpenCollection(Folder() / "one.cp"));
        QSignalSpy finished(m_pWindow.get(), &TMainWindow::AnalysisFinished);
        Trigger("adv.quicktest");
        QVERIFY(m_pWindow->Analysing());
        Trigger("adv.regtest");
        QVERIFY(Reported(*m_pReporter, "Solving is pending."));
        QVERIFY(finished.wait(60000));
        std::filesystem::current_path(was);
        QVERIFY(m_pWindow->ProgressText().contains("Short regression test (64 sec.) started of"));
        QVERIFY(m_pWindow->ProgressText().contains(QRegularExpression("Test #1 M\\d+ ok")));
        QVERIFY(Reported(*m_pReporter, "Regression test: all tests ok"));
    }

    void positionsOfTheTypeByIndex() {
        const auto fen = [this] {
            return WriteFenPlacement(m_pWindow->Collection().Current().m_position.board);
        };
        QApplication::clipboard()->setText("8/8/8/8/8/2k5/8/K6Q w - - 0 1");
        Trigger("pos.paste");
        const std::string start = fen();
        for (const auto& [forth, back] :
             {std::pair{"adv.nexttype", "adv.prevtype"}, {"adv.prevtype", "adv.nexttype"}}) {
            Trigger(forth);
            QVERIFY(fen() != start);
            Trigger(back);
            QCOMPARE(fen(), start);
        }
        Trigger("adv.typeindex", {"123456789"});
        QVERIFY(Reported(*m_pReporter, "Index 123456789 gives no legal position of this type"));
        QCOMPARE(fen(), start);
    }

    // KQk generated, looked up, walked by its longest mates (#10) and verified (also as partial data,
    // which it is not: nothing else is needed), each on the engine thread.
    void precalculatedDataTools() {
        TGlobalRegisters::Instance().Configure(TGlobalRegisterSettings::FromOptions(TOptions{}),
                                               m_pReporter.get());
        QApplication::clipboard()->setText("8/8/8/8/8/2k5/8/K6Q w - - 0 1");
        Trigger("pos.paste");
        struct TStep {
            const char* id;
            const char* told;
            const char* fen;  // the position afterwards
        };
        const std::string start = "8/8/8/8/8/2k5/8/K6Q", first = "8/8/8/5k2/8/8/1Q6/K7";
        for (const TStep& step :
             {TStep{"adv.precalc", "KQk: ", start.c_str()},
              {"adv.posinfo", "w: White mates in 6", start.c_str()},
              {"adv.maxnext", "KQk: max #10, index 19616", first.c_str()},
              {"adv.maxnext", "KQk: max #10, index 19840", "8/8/4k3/8/8/8/1Q6/K7"},
              {"adv.maxprev", "KQk: max #10, index 19616", first.c_str()},
              {"adv.verifyfiles", "1 position type(s) verified, 0 fault(s)", first.c_str()},
              {"adv.verifypartial", "KQk: 262144 indexes checked, 0 fault(s)", first.c_str()}}) {
            QSignalSpy finished(m_pWindow.get(), &TMainWindow::AnalysisFinished);
            Trigger(step.id);
            QVERIFY(finished.wait(120000));
            QVERIFY2(Reported(*m_pReporter, step.told), step.id);
            QCOMPARE(WriteFenPlacement(m_pWindow->Collection().Current().m_position.board),
                     std::string(step.fen));
        }
    }

    void recoveryNoticeOnceForAProcessGone_data() {
        QTest::addColumn<int>("pid");
        QTest::addColumn<bool>("told");
        QTest::newRow("gone") << 4194303 << true;
        QTest::newRow("this one") << int(getpid()) << false;
        QTest::newRow("closed") << 0 << false;
    }

    void recoveryNoticeOnceForAProcessGone() {
        QFETCH(int, pid);
        QFETCH(bool, told);
        std::filesystem::create_directories(Folder() / "SavedTmpRegisterData");
        std::error_code error;
        std::ofstream(Folder() / "SavedTmpRegisterData" / "AutoSave.tmpReg.ini")
            << "[AutoSave]\nProcessId=" << pid
            << "\nProcessFileName=" << std::filesystem::read_symlink("/proc/self/exe", error).string()
            << "\n";
        m_pWindow->ShowRecoveryNotice();
        m_pWindow->ShowRecoveryNotice();
        int count = 0;
        for (const auto& report : m_pReporter->Reports())
            count +=
                report.sText.starts_with("The last program analysis seems to have been closed forcibly.");
        QCOMPARE(count, told ? 1 : 0);
    }
};

QTEST_MAIN(TDialogsTest)
#include "dialogs_test.moc"
