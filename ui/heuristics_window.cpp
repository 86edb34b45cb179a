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

// A check box of the fields (with the text field of its parameter when it has one), or one of a
// flag of the parameter block that the fields do not carry.
struct TFieldRow {
    const char* id;
    bool TFields::*check;         // null: a flag row
    std::string TFields::*value;  // null: no text field
    int group;                    // 0 black king, 1 figures, 2 White's moves
    bool sub = false;             // an option of the row above it, indented
    bool& (*flag)(TParams&) = nullptr;
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
    {"heur.seasnake", &TFields::m_bSeaSnake, nullptr, 2},
    {"heur.relax", &TFields::m_bRelaxHeuristics, nullptr, 2},
    {"heur.ffm", &TFields::m_bFindForcedMate, &TFields::m_sFfmRelaxations, 2},
    {"heur.ffmtwice", nullptr, nullptr, 2, true, [](TParams& p) -> bool& { return p.ffm.twoCycles; }},
    {"heur.ffmcaptures", nullptr, nullptr, 2, true,
     [](TParams& p) -> bool& { return p.ffm.captureNearBlackKing; }},
};

// The heuristics shown as plain check boxes, with their labels.
const std::pair<const char*, uint32_t> kPlainRows[] = {
    {"heur.kingsnear", SH_AREKINGSNEAR},
    {"heur.sweepingrook", SH_SWEEPINGWHITEROOK},
    {"heur.onecolor", SH_ONECOLORPLAYPOSSIBLE},
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
    {"heur.zugzwang", SH_ZUGZWANG},
};

// The radio buttons of the FindForcedMate modes, stored as 2..9 in this order.
const char* const kFfmModes[] = {"check+excps", "threat #1", "#1+", "#2", "#2+", "#3", "#4", "#5"};

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
    for (const TFieldRow& row : kFieldRows) {
        QGridLayout* group = groups[row.group];
        const int line = group->rowCount();
        auto* check = new QCheckBox(UiText(row.id, m_nLanguage), this);
        check->setObjectName(row.id);
        if (row.sub) check->setStyleSheet("margin-left: 18px");
        group->addWidget(check, line, 0);
        m_checks[row.id] = check;
        if (!row.value) continue;
        auto* field = new QLineEdit(this);
        field->setObjectName(std::string(row.id) + ".value");
        field->setMaximumWidth(110);
        group->addWidget(field, line, 1);
        m_fields[row.id] = field;
    }
    m_pFfmMode = new QComboBox(this);
    for (const char* mode : kFfmModes) m_pFfmMode->addItem(mode);
    groups[2]->addWidget(new QLabel(UiText("heur.ffmmode", m_nLanguage), this), groups[2]->rowCount(), 0);
    groups[2]->addWidget(m_pFfmMode, groups[2]->rowCount() - 1, 1);
    auto* depth = new QLineEdit(this);
    depth->setMaximumWidth(110);
    groups[2]->addWidget(new QLabel(UiText("heur.quickdepth", m_nLanguage), this), groups[2]->rowCount(), 0);
    groups[2]->addWidget(depth, groups[2]->rowCount() - 1, 1);
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
    const TFields fields = DialogFieldsOfSet(set);
    TParams params = set.params;
    for (const TFieldRow& row : kFieldRows) {
        m_checks.at(row.id)->setChecked(row.check ? fields.*row.check : row.flag(params));
        if (row.value) m_fields.at(row.id)->setText(QString::fromStdString(fields.*row.value));
    }
    m_fields.at("heur.quickdepth")->setText(QString::fromStdString(fields.m_sQuickMateDepth));
    m_pFfmMode->setCurrentIndex(
        std::clamp(fields.m_nFfmMode - kFfmCheckOnly, 0, kFfmThreat5 - kFfmCheckOnly));
    for (const auto& [id, bit] : m_bits) m_checks.at(id)->setChecked(set.Has(bit));
}

void THeuristicsWindow::RestorePrevious() {
    if (!m_previous) {
        m_reporter.Report(ReportTitle(ReportKind::Information, m_nLanguage),
                          "No previous settings for heuristics");
        return;
    }
    m_chosen = *m_previous;
    Show(*m_previous);
}

THeuristicsDialogFields THeuristicsWindow::Fields() const {
    TFields fields;
    for (const TFieldRow& row : kFieldRows) {
        if (!row.check) continue;
        fields.*row.check = m_checks.at(row.id)->isChecked();
        if (row.value) fields.*row.value = m_fields.at(row.id)->text().trimmed().toStdString();
    }
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
    m_chosen = SetOfDialogFields(fields, PlainBits(), m_chosen);
    for (const TFieldRow& row : kFieldRows)
        if (row.flag) row.flag(m_chosen.params) = m_checks.at(row.id)->isChecked();
    m_bRelax = fields.m_bRelaxHeuristics;
    accept();
    return true;
}

}  // namespace moremate::ui
