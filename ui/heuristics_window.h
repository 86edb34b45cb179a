// THeuristicsWindow: the heuristics dialog. It opens on the fields of a heuristic set (the one the
// engine would start the problem with, or the user's last choice), lets the user change them, and
// on "Find solution" runs the dialog's checks: the first failing check is shown and the dialog
// stays open; otherwise the notes are shown and the dialog closes with the chosen set.
#pragma once

#include <QDialog>
#include <map>
#include <optional>
#include <string>

#include "core/chessboard.h"
#include "engine/heuristics/heuristic_dialog_set.h"
#include "settings/reporter.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLineEdit;

namespace moremate::ui {

class THeuristicsWindow : public QDialog {
    Q_OBJECT
  public:
    // `previous`: the set chosen last time, offered by "Previous settings" (none: that button
    // says so).
    THeuristicsWindow(const THeuristicSet& set, const TChessboard& position,
                      std::optional<THeuristicSet> previous, int language, CReporter& reporter,
                      QWidget* parent = nullptr);

    // The widgets by their text identifiers, for the tests and the screenshots.
    QCheckBox* Check(const std::string& id) const { return m_checks.at(id); }
    QLineEdit* Field(const std::string& id) const { return m_fields.at(id); }
    QComboBox* FfmMode() const { return m_pFfmMode; }
    QComboBox* ColourMode() const { return m_pColourMode; }
    // The checks of "Find solution"; true (and the dialog accepted) when they pass.
    bool TakeSet();
    const THeuristicSet& Chosen() const { return m_chosen; }
    // Whether the passes may relax the chosen set ("Let relax heuristics").
    bool Relaxes() const { return m_bRelax; }

  private:
    void BuildFields(QGridLayout* grid);
    void BuildPlainBits(QGridLayout* grid);
    void Show(const THeuristicSet& set);
    void RestorePrevious();
    THeuristicsDialogFields Fields() const;
    uint32_t PlainBits() const;

    THeuristicSet m_chosen;
    bool m_bRelax = true;
    TChessboard m_position;
    std::optional<THeuristicSet> m_previous;
    int m_nLanguage;
    CReporter& m_reporter;
    std::map<std::string, QCheckBox*> m_checks;
    std::map<std::string, QLineEdit*> m_fields;
    std::map<std::string, uint32_t> m_bits;  // the plain check boxes' heuristics
    QComboBox* m_pFfmMode = nullptr;
    QComboBox* m_pColourMode = nullptr;
};

}  // namespace moremate::ui
