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
// Saving reads the register that a run fills, reading replaces it: neither while a run goes on.
bool TMainWindow::RefuseRegisterCommand() {
    if (Analysing()) {
        Inform(kSaveRefusedText);
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

void TMainWindow::SaveRegisterTo(const std::filesystem::path& file, const std::function<void()>& saved) {
    if (!m_pRunRegister) return Inform(Text("msg.noregister").toStdString());
    auto written = std::make_shared<bool>(false);
    StartTool(
        [runRegister = m_pRunRegister.get(), file, written,
         told =
             Text("label.regsaved").arg(QString::fromStdString(file.string())).toStdString()](CRunControl&) {
            SaveRunRegister(file, *runRegister);
            *written = true;
            return told;
        },
        [written, saved] {
            if (*written && saved) saved();
        });
}

// Reads on the engine thread, with as many buckets as the current problem's length asks for; the
// register read replaces the window's when the run ends.
void TMainWindow::ReadRegisterFile(const std::filesystem::path& file) {
    auto loaded = std::make_shared<std::unique_ptr<CRunRegister>>();
    const size_t buckets =
        LoadBucketCount(m_collection.Current().StipulationMoves(), m_options.TempRegQuotaMB());
    StartTool(
        [file, options = m_options, language = m_nLanguage, loaded, buckets](CRunControl&) {
            TRunRegisterLoad load = LoadRunRegisterFile(file, options, buckets);
            if (load.result.bRead) *loaded = std::move(load.runRegister);
            return LoadReportText(load.result, file, language, options.m_bClearRegisterOnStartSolving);
        },
        [this, loaded] {
            if (*loaded) m_pRunRegister = std::move(*loaded);
        });
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
    SaveRegisterTo(ReferencedRegisterFile(number),
                   [this, number] { Edit([number](ProblemEntry& e) { SetTmpRegNumber(e, number); }); });
}

// Takes the reference off the problem; the register file stays.
void TMainWindow::UnpinRegister() {
    if (RefuseRegisterCommand()) return;
    if (!m_collection.Current().m_annotations.sTmpReg) return Inform(Text("msg.notpinned").toStdString());
    Edit([](ProblemEntry& e) { e.m_annotations.sTmpReg.reset(); });
}

void TMainWindow::ShowRecoveryNotice() {
    const std::filesystem::path data = ProgramFolder() / kSavedRegisterFolder / kAutoSaveFileName;
    const std::filesystem::path descriptor = data.string() + ".ini";
    std::error_code error;
    if (!std::filesystem::exists(descriptor, error) || !EndedForcibly(ReadAutoSaveDescriptor(descriptor)))
        return;
    Inform(Text("msg.forciblyclosed").toStdString() + "\n\n" + Text("msg.recovery").toStdString() + "\n" +
           data.string());
    MarkAutoSaveClosed(descriptor);  // told once
}

}  // namespace moremate::ui
