// TOptionsWindow: the options dialog over the settings' dialog fields. "Save settings" hands the
// fields to the settings' checks; the dialog stays open on a failure and closes when the values
// were taken and written to "options.ini".
#pragma once

#include <QDialog>
#include <map>
#include <string>

#include "settings/options_dialog.h"

class QCheckBox;
class QLineEdit;
class QFormLayout;

namespace moremate::ui {

class TOptionsWindow : public QDialog {
    Q_OBJECT
  public:
    // `options` and `threads` are changed when the dialog saves.
    TOptionsWindow(TOptions& options, int& threads, int language, CReporter& reporter,
                   QWidget* parent = nullptr);

    // The fields as the dialog's widgets hold them.
    TOptionsDialogFields Fields() const;
    QLineEdit* Field(const std::string& id) const { return m_fields.at(id); }
    // The checks and the save of "Save settings"; true when the dialog closes.
    bool SaveSettings();

  private:
    void AddCheck(const char* id, bool TOptions::*member);
    void AddField(const char* id, const std::string& value);

    TOptions& m_options;
    int& m_nThreads;
    int m_nLanguage;
    CReporter& m_reporter;
    TOptionsDialogFields m_initial;
    std::map<std::string, QCheckBox*> m_checks;
    std::map<std::string, bool TOptions::*> m_members;
    std::map<std::string, QLineEdit*> m_fields;
    QFormLayout* m_pForm = nullptr;
};

}  // namespace moremate::ui
