#include "options_window.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "settings/program_folder.h"
#include "texts.h"

namespace moremate::ui {
namespace {

int Number(const QLineEdit* field) {
    return field->text().trimmed().toInt();
}

}  // namespace

TOptionsWindow::TOptionsWindow(TOptions& options, int& threads, int language, CReporter& reporter,
                               QWidget* parent)
    : QDialog(parent),
      m_options(options),
      m_nThreads(threads),
      m_nLanguage(language),
      m_reporter(reporter),
      m_initial(OptionsDialogFields(options, threads)) {
    setWindowTitle(UiText("label.options", language));
    auto* layout = new QVBoxLayout(this);
    m_pForm = new QFormLayout;
    layout->addLayout(m_pForm);
    AddCheck("opt.quick", &TOptions::m_bQuickMode);
    AddCheck("opt.clear", &TOptions::m_bClearRegisterOnStartSolving);
    AddCheck("opt.prompt", &TOptions::m_bPromptHeuristics);
    AddCheck("opt.showmain", &TOptions::m_bShowMainVariant);
    AddCheck("opt.globalrules", &TOptions::m_bUseGlobalRules);
    AddCheck("opt.customsched", &TOptions::m_bCustomScheduler);
    AddCheck("opt.threadpool", &TOptions::m_bSchedulerThreadPool);
    AddCheck("opt.sameMove", &TOptions::m_bLetAnalyzeTheSameMoveInTwoThreads);
    AddCheck("opt.logmoves", &TOptions::m_bLogMoves);
    AddField("opt.precalcmem", m_initial.sMaxMemRatioForPrecalculatedData);
    AddField("opt.tempmem", m_initial.sMaxMemRatioForTempReg);
    AddField("opt.sched", m_initial.sSchedulerLevels);
    AddField("opt.lichess", m_initial.sLichessLevels);
    AddField("opt.threads", std::to_string(m_initial.nThreads));
    AddField("opt.mtl", std::to_string(m_initial.nMultithreadingLevels));
    AddField("opt.observer", std::to_string(m_initial.options.m_shObserverLevels));
    AddField("opt.automin", m_initial.sAutoSaveMinutes);
    AddField("opt.automb", m_initial.sAutoSaveMB);
    AddField("opt.details", std::to_string(m_initial.nSolutionDetailsMoves));
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* save = buttons->addButton(UiText("opt.save", language), QDialogButtonBox::AcceptRole);
    QPushButton* cancel = buttons->addButton(UiText("opt.cancel", language), QDialogButtonBox::RejectRole);
    connect(save, &QPushButton::clicked, this, [this] {
        if (SaveSettings()) accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void TOptionsWindow::AddCheck(const char* id, bool TOptions::*member) {
    auto* box = new QCheckBox(UiText(id, m_nLanguage), this);
    box->setChecked(m_initial.options.*member);
    m_pForm->addRow(box);
    m_checks[id] = box;
    m_members[id] = member;
}

void TOptionsWindow::AddField(const char* id, const std::string& value) {
    auto* field = new QLineEdit(QString::fromStdString(value), this);
    m_pForm->addRow(UiText(id, m_nLanguage), field);
    m_fields[id] = field;
}

TOptionsDialogFields TOptionsWindow::Fields() const {
    TOptionsDialogFields fields = m_initial;
    for (const auto& [id, box] : m_checks) fields.options.*m_members.at(id) = box->isChecked();
    const auto text = [this](const char* id) { return m_fields.at(id)->text().trimmed().toStdString(); };
    fields.sMaxMemRatioForPrecalculatedData = text("opt.precalcmem");
    fields.sMaxMemRatioForTempReg = text("opt.tempmem");
    fields.sSchedulerLevels = text("opt.sched");
    fields.sLichessLevels = text("opt.lichess");
    fields.nThreads = Number(m_fields.at("opt.threads"));
    fields.nMultithreadingLevels = Number(m_fields.at("opt.mtl"));
    fields.options.m_shObserverLevels = static_cast<int16_t>(Number(m_fields.at("opt.observer")));
    fields.sAutoSaveMinutes = text("opt.automin");
    fields.sAutoSaveMB = text("opt.automb");
    fields.nSolutionDetailsMoves = Number(m_fields.at("opt.details"));
    return fields;
}

bool TOptionsWindow::SaveSettings() {
    return SaveOptionsDialog(Fields(), m_options, m_nThreads, OptionsFilePath(), m_reporter);
}

}  // namespace moremate::ui
