#include "heuristics_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "texts.h"

namespace moremate::ui {
namespace {

using TFields = THeuristicsDialogFields;

using TParams = THeuristicParameters;

// A check box of the fields (with the text field of its parameter when it has one), one of a flag
// of the parameter block that the fields do not carry, or a labelled text field of its own (neither
// check nor flag).
struct TFieldRow {
    const char* id;
    bool TFields::*check;         // null: a flag row or a labelled field
    std::string TFields::*value;  // null: no text field
    int group;                    // 0 black king, 1 figures, 2 White's moves
    bool sub = false;             // an option of the row above it, indented
    bool& (*flag)(TParams&) = nullptr;

    bool Labelled() const { return !check && !flag; }
};

const TFieldRow kFieldRows[] = {
    {"heur.outofedge", &TFields::m_bOutOfEdge, nullptr, 0},
    {"heur.outofextedge", &TFields::m_bOutOfExtEdge, nullptr, 0},
    {"heur.moveunless", &TFields::m_bMoveUnlessOnEdge, nullptr, 0},
    {"heur.inclcorner", nullptr, nullptr, 0, true, [](TParams& p) -> bool& { return p.inclCorner; }},
    {"heur.advpawn", &TFields::m_bOnAdvancedPawn, nullptr, 0, true},
    {"heur.figcaptured", &TFields::m_bOnFigureCaptured, &TFields::m_sFiguresToCapture, 0, true},
    {"heur.alsopawns", nullptr, nullptr, 0, true,
     [](TParams& p) -> bool& { return p.edgeRelaxation.alsoPawns; }},
    {"heur.defer", &TFields::m_bDeferCheck, &TFields::m_sDeferMoves, 0, true},
    {"heur.skipdefer", nullptr, nullptr, 0, true,
     [](TParams& p) -> bool& { return p.edgeRelaxation.skipDeferIfNoBalanceChange; }},
    {"heur.extonly", nullptr, nullptr, 0, true,
     [](TParams& p) -> bool& { return p.edgeRelaxation.extEdgeOnly; }},
    {"heur.autorelax", nullptr, nullptr, 0, true,
     [](TParams& p) -> bool& { return p.edgeRelaxation.automatic; }},
    {"heur.kingmove", &TFields::m_bDontLetKingMove, nullptr, 0},
    {"heur.allowexc", &TFields::m_bAllowExc, nullptr, 0, true},
    {"heur.nearcorner", &TFields::m_bKeepNearCorner, &TFields::m_sCornerDistance, 0},
    {"heur.inclpawns", &TFields::m_bInclPawns, nullptr, 1},
    {"heur.inclpromo", &TFields::m_bInclPromotablePawns, nullptr, 1},
    {"heur.maindiag", &TFields::m_bDontLeaveMainDiagonal, &TFields::m_sMainDiagonalFigure, 1},
    {"heur.unblock", &TFields::m_bDontLetFigureUnblock, &TFields::m_sBlockedFigures, 1},
    {"heur.keyfigure", &TFields::m_bKeyWhiteFigure, &TFields::m_sKeyWhiteFigure, 1},
    {"heur.keyline", &TFields::m_bKeyLine, &TFields::m_sKeyLine, 1},
    {"heur.keydiag", &TFields::m_bKeyDiagonal, &TFields::m_sKeyDiagonal, 1},
    {"heur.promotedstrict", nullptr, nullptr, 1, false, [](TParams& p) -> bool& { return p.promotedStrict; }},
    {"heur.surroundstrict", nullptr, nullptr, 1, false,
     [](TParams& p) -> bool& { return p.surroundedStrict; }},
    {"heur.skippassive", &TFields::m_bSkipPassive, nullptr, 2},
    {"heur.skipworst", &TFields::m_bSkipWorst, nullptr, 2},
    {"heur.seasnake", &TFields::m_bSeaSnake, &TFields::m_sSeaSnake, 2},
    {"heur.pendulum", nullptr, &TFields::m_sPendulum, 2, true},
    {"heur.zugzwang", &TFields::m_bZugzwang, &TFields::m_sZugzwangMove, 2},
    {"heur.zugzwangby", nullptr, &TFields::m_sZugzwangBy, 2, true},
    {"heur.onecolor", &TFields::m_bOneColour, nullptr, 2},
    {"heur.relax", &TFields::m_bRelaxHeuristics, nullptr, 2},
    {"heur.ffm", &TFields::m_bFindForcedMate, &TFields::m_sFfmRelaxations, 2},
    {"heur.ffmothers", &TFields::m_bFfmWithOthers, nullptr, 2, true},
    {"heur.ffmpartially", &TFields::m_bFfmPartially, nullptr, 2, true},
    {"heur.ffmtwice", nullptr, nullptr, 2, true, [](TParams& p) -> bool& { return p.ffm.twoCycles; }},
    {"heur.ffmcaptures", nullptr, nullptr, 2, true,
     [](TParams& p) -> bool& { return p.ffm.captureNearBlackKing; }},
};

// The heuristics shown as plain check boxes, with their labels.
const std::pair<const char*, uint32_t> kPlainRows[] = {
    {"heur.kingsnear", SH_AREKINGSNEAR},
    {"heur.sweepingrook", SH_SWEEPINGWHITEROOK},
    {"heur.recede", SH_DONTRECEDEBLACKKING},
    {"heur.promotedqueen", SH_DONTLETPROMOTEDQUEENMOVE},
    {"heur.promotedfigure", SH_DONTLETPROMOTEDFIGUREMOVE},
    {"heur.savequeen", SH_SAVEQUEENROOK},
    {"heur.loseany", SH_DONTLOSEANYFIGURES},
    {"heur.queencheck", SH_DONTLETBLACKQUEENCHECKTWICE},
    {"heur.surrounded", SH_ASSERTBLACKKINGSURROUNDED},
    {"heur.singlequeen", SH_SINGLEQUEENMATE},
    {"heur.3moves", SH_3MOVESTOMATE},
    {"heur.captureknight", SH_CAPTUREKNIGHT},
    {"heur.globreg", SH_REDUCTIONTOGLOBREGPOS},
};

// The radio buttons of the FindForcedMate modes, stored as 2..9 in this order.
const char* const kFfmModes[] = {"check+excps", "threat #1", "#1+", "#2", "#2+", "#3", "#4", "#5"};

// The colour modes of "One color play possible" in TColourMode's order, none first.
const char* const kColourModes[] = {"heur.colournone", "heur.whitesquares", "heur.blacksquares",
                                    "heur.separatedbishop"};

// A label and its widget as a row of their own at the end of `group`.
void AddLabelled(QGridLayout* group, QLabel* label, QWidget* widget) {
    const int line = group->rowCount();
    group->addWidget(label, line, 0);
    group->addWidget(widget, line, 1);
}

}  // namespace

THeuristicsWindow::THeuristicsWindow(const THeuristicSet& set, const TChessboard& position,
                                     std::optional<THeuristicSet> previous, int language, CReporter& reporter,
                                     QWidget* parent)
    : QDialog(parent),
      m_chosen(set),
      m_position(position),
      m_previous(std::move(previous)),
      m_nLanguage(language),
      m_reporter(reporter) {
    setWindowTitle(UiText("heur.title", language));
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    layout->addLayout(grid);
    BuildFields(grid);
    BuildPlainBits(grid);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* solve = buttons->addButton(UiText("heur.solve", language), QDialogButtonBox::AcceptRole);
    QPushButton* restore = buttons->addButton(UiText("heur.previous", language), QDialogButtonBox::ResetRole);
    QPushButton* cancel = buttons->addButton(UiText("opt.cancel", language), QDialogButtonBox::RejectRole);
    connect(solve, &QPushButton::clicked, this, &THeuristicsWindow::TakeSet);
    connect(restore, &QPushButton::clicked, this, &THeuristicsWindow::RestorePrevious);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons);
    Show(set);
}

void THeuristicsWindow::BuildFields(QGridLayout* grid) {
    QGridLayout* groups[3];
    const char* titles[] = {"heur.groupking", "heur.groupfigures", "heur.groupmoves"};
    for (int g = 0; g < 3; ++g) {
        auto* box = new QGroupBox(UiText(titles[g], m_nLanguage), this);
        groups[g] = new QGridLayout(box);
        grid->addWidget(box, g == 2 ? 1 : 0, g == 2 ? 0 : g);
    }
    m_pColourMode = new QComboBox(this);
    for (const char* mode : kColourModes) m_pColourMode->addItem(UiText(mode, m_nLanguage));
    for (const TFieldRow& row : kFieldRows) {
        QGridLayout* group = groups[row.group];
        const int line = group->rowCount();
        if (row.check == &TFields::m_bOneColour) group->addWidget(m_pColourMode, line, 1);
        QWidget* label = row.Labelled() ? static_cast<QWidget*>(new QLabel(UiText(row.id, m_nLanguage), this))
                                        : new QCheckBox(UiText(row.id, m_nLanguage), this);
        label->setObjectName(row.id);
        if (row.sub) label->setStyleSheet("margin-left: 18px");
        group->addWidget(label, line, 0);
        if (!row.Labelled()) m_checks[row.id] = static_cast<QCheckBox*>(label);
        if (!row.value) continue;
        auto* field = new QLineEdit(this);
        field->setObjectName(std::string(row.id) + ".value");
        field->setMaximumWidth(110);
        group->addWidget(field, line, 1);
        m_fields[row.id] = field;
    }
    m_pFfmMode = new QComboBox(this);
    for (const char* mode : kFfmModes) m_pFfmMode->addItem(mode);
    AddLabelled(groups[2], new QLabel(UiText("heur.ffmmode", m_nLanguage), this), m_pFfmMode);
    auto* depth = new QLineEdit(this);
    depth->setMaximumWidth(110);
    AddLabelled(groups[2], new QLabel(UiText("heur.quickdepth", m_nLanguage), this), depth);
    m_fields["heur.quickdepth"] = depth;
}

void THeuristicsWindow::BuildPlainBits(QGridLayout* grid) {
    auto* box = new QGroupBox(UiText("heur.groupother", m_nLanguage), this);
    auto* group = new QGridLayout(box);
    int index = 0;
    for (const auto& [id, bit] : kPlainRows) {
        auto* check = new QCheckBox(UiText(id, m_nLanguage), this);
        check->setObjectName(id);
        group->addWidget(check, index / 2, index % 2);
        m_checks[id] = check;
        m_bits[id] = bit;
        ++index;
    }
    grid->addWidget(box, 1, 1);
}

void THeuristicsWindow::Show(const THeuristicSet& set) {
    const TFields fields = DialogFieldsOfSet(set, m_position);
    TParams params = set.params;
    for (const TFieldRow& row : kFieldRows) {
        if (!row.Labelled())
            m_checks.at(row.id)->setChecked(row.check ? fields.*row.check : row.flag(params));
        if (row.value) m_fields.at(row.id)->setText(QString::fromStdString(fields.*row.value));
    }
    m_fields.at("heur.quickdepth")->setText(QString::fromStdString(fields.m_sQuickMateDepth));
    m_pColourMode->setCurrentIndex(static_cast<int>(fields.m_eColourMode));
    m_pFfmMode->setCurrentIndex(
        std::clamp(fields.m_nFfmMode - kFfmCheckOnly, 0, kFfmThreat5 - kFfmCheckOnly));
    for (const auto& [id, bit] : m_bits) m_checks.at(id)->setChecked(set.Has(bit));
}

void THeuristicsWindow::RestorePrevious() {
    if (!m_previous) {
        m_reporter.Report(ReportTitle(ReportKind::Information, m_nLanguage),
                          UiText("msg.noprevheur", m_nLanguage).toStdString());
        return;
    }
    m_chosen = *m_previous;
    Show(*m_previous);
}

THeuristicsDialogFields THeuristicsWindow::Fields() const {
    TFields fields;
    for (const TFieldRow& row : kFieldRows) {
        if (row.check) fields.*row.check = m_checks.at(row.id)->isChecked();
        if (row.value) fields.*row.value = m_fields.at(row.id)->text().trimmed().toStdString();
    }
    fields.m_eColourMode = static_cast<TColourMode>(m_pColourMode->currentIndex());
    fields.m_sQuickMateDepth = m_fields.at("heur.quickdepth")->text().trimmed().toStdString();
    fields.m_nFfmMode = static_cast<uint8_t>(kFfmCheckOnly + m_pFfmMode->currentIndex());
    return fields;
}

uint32_t THeuristicsWindow::PlainBits() const {
    uint32_t bits = 0;
    for (const auto& [id, bit] : m_bits)
        if (m_checks.at(id)->isChecked()) bits |= bit;
    return bits;
}

bool THeuristicsWindow::TakeSet() {
    const TFields fields = Fields();
    const THeuristicsCheck check = CheckHeuristicsDialog(fields, m_position);
    const std::string title = ReportTitle(ReportKind::Information, m_nLanguage);
    if (!check.m_bOk) {
        m_reporter.Report(title, check.m_sMessage);
        return false;
    }
    for (const std::string& note : check.m_vsNotes) m_reporter.Report(title, note);
    m_chosen = SetOfDialogFields(fields, PlainBits(), m_chosen, m_position);
    for (const TFieldRow& row : kFieldRows)
        if (row.flag) row.flag(m_chosen.params) = m_checks.at(row.id)->isChecked();
    m_bRelax = fields.m_bRelaxHeuristics;
    accept();
    return true;
}

}  // namespace moremate::ui
