// The main window's commands on the temporary register of the current problem: save it (to the
// problem's default file or one the user names), read it back, pin it to the problem so that
// solving loads it, unpin it; and the notice of an analysis the last session left unfinished.
#include <QFileDialog>

#include "core/chess_exception.h"
#include "engine/heuristics/heuristic_text.h"
#include "engine/run/run_texts.h"
#include "main_window.h"
#include "problems/annotations/register_reference.h"
#include "problems/annotations/register_saving.h"
#include "registers/register_autosave.h"
#include "registers/register_file.h"
#include "settings/autosave_descriptor.h"
#include "settings/program_folder.h"
#include "texts.h"

namespace moremate::ui {
namespace {

constexpr const char* kForciblyClosedText = "The last program analysis seems to have been closed forcibly.";

}  // namespace

// Saving reads the register that a run fills, reading replaces it: neither while a run goes on.
bool TMainWindow::RefuseRegisterCommand() {
    if (Analysing()) {
        m_reporter.Report(ReportTitle(ReportKind::Information, m_nLanguage), kSaveRefusedText);
        return true;
    }
    return m_collection.Size() == 0;
}

// The file the problem's pin names, else the file named after the collection and the problem.
std::filesystem::path TMainWindow::DefaultRegisterFile() const {
    const ProblemEntry& entry = m_collection.Current();
    const std::optional<uint32_t> number = TmpRegNumber(entry);
    return number ? ReferencedRegisterFile(*number)
                  : ProblemRegisterFile(m_collection.File(), entry.m_nNumber);
}

bool TMainWindow::SaveRegisterTo(const std::filesystem::path& file) {
    const std::string title = ReportTitle(ReportKind::Information, m_nLanguage);
    if (!m_pRunRegister) {
        m_reporter.Report(title, Text("msg.noregister").toStdString());
        return false;
    }
    try {
        SaveRunRegister(file, *m_pRunRegister);
    } catch (const ChessException& e) {
        m_reporter.Report(ReportTitle(ReportKind::Error, m_nLanguage), e.what());
        return false;
    }
    Say(Text("label.regsaved").arg(QString::fromStdString(file.string())));
    return true;
}

void TMainWindow::ReadRegisterFile(const std::filesystem::path& file) {
    TRunRegisterLoad load = LoadRunRegisterFile(file, m_options);
    m_reporter.Report(
        ReportTitle(ReportKind::Information, m_nLanguage),
        LoadReportText(load.result, file, m_nLanguage, m_options.m_bClearRegisterOnStartSolving));
    if (load.result.bRead) m_pRunRegister = std::move(load.runRegister);
}

void TMainWindow::SaveRegister() {
    if (!RefuseRegisterCommand()) SaveRegisterTo(DefaultRegisterFile());
}

void TMainWindow::SaveRegisterAs() {
    if (RefuseRegisterCommand()) return;
    const QString name = QFileDialog::getSaveFileName(this, Title("adv.saveregas"),
                                                      QString::fromStdString(DefaultRegisterFile().string()),
                                                      Text("filter.tmpreg"));
    if (!name.isEmpty()) SaveRegisterTo(name.toStdString());
}

void TMainWindow::ReadRegister() {
    if (!RefuseRegisterCommand()) ReadRegisterFile(DefaultRegisterFile());
}

void TMainWindow::ReadRegisterFrom() {
    if (RefuseRegisterCommand()) return;
    const QString name = QFileDialog::getOpenFileName(this, Title("adv.readregfrom"),
                                                      QString::fromStdString(DefaultRegisterFile().string()),
                                                      Text("filter.tmpreg"));
    if (!name.isEmpty()) ReadRegisterFile(name.toStdString());
}

// Saves to the next free numbered file and makes the problem refer to it ("//@tmpreg="), so that
// solving it reads the register first.
void TMainWindow::PinRegister() {
    if (RefuseRegisterCommand()) return;
    const uint32_t number = NextFreeRegisterNumber();
    if (SaveRegisterTo(ReferencedRegisterFile(number)))
        Edit([number](ProblemEntry& e) { SetTmpRegNumber(e, number); });
}

// Takes the reference off the problem; the register file stays.
void TMainWindow::UnpinRegister() {
    if (RefuseRegisterCommand()) return;
    if (!m_collection.Current().m_annotations.sTmpReg)
        return void(m_reporter.Report(ReportTitle(ReportKind::Information, m_nLanguage),
                                      Text("msg.notpinned").toStdString()));
    Edit([](ProblemEntry& e) { e.m_annotations.sTmpReg.reset(); });
}

void TMainWindow::AttachAutoSave(const ProblemEntry& entry, const std::optional<THeuristicSet>& set) {
    TAutoSaveSettings settings;
    settings.nMinutes = m_options.m_nAutoSaveMinutes;
    settings.nMegabytes = m_options.m_nAutoSaveMB;
    settings.bEnabled = true;
    settings.folder = ProgramFolder() / kSavedRegisterFolder;
    TAutoSaveDescriptor descriptor;
    descriptor.m_sDescription = entry.m_sDescription.substr(0, kMaxDescriptionLength);
    descriptor.m_bHeuristicsOnStartSelectedByUser = set.has_value();
    if (set) {
        descriptor.m_nHeuristicsOnStart = set->mask;
        descriptor.m_sHeuristicsOnStartString = HeuristicSetText(*set);
    }
    descriptor.m_nMaxMemRatioForPrecalculatedData = m_options.m_nMaxMemRatioForPrecalculatedData;
    descriptor.m_nMaxMemRatioPerProblem = m_options.m_nMaxMemRatioForTempReg;
    m_pAutoSave = std::make_unique<CRegisterAutoSave>(settings, descriptor);
    m_pAutoSave->Attach(m_pRunRegister->WhiteToMove(), &m_pRunRegister->BlackToMove());
}

void TMainWindow::ShowRecoveryNotice() {
    const std::filesystem::path data = ProgramFolder() / kSavedRegisterFolder / kAutoSaveFileName;
    const std::filesystem::path descriptor = data.string() + ".ini";
    std::error_code error;
    if (!std::filesystem::exists(descriptor, error) || !EndedForcibly(ReadAutoSaveDescriptor(descriptor)))
        return;
    m_reporter.Report(ReportTitle(ReportKind::Information, m_nLanguage),
                      std::string(kForciblyClosedText) + "\n\n" + Text("msg.recovery").toStdString() + "\n" +
                          data.string());
    MarkAutoSaveClosed(descriptor);  // told once
}

}  // namespace moremate::ui
