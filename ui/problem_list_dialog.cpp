#include "problem_list_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QVBoxLayout>

namespace moremate::ui {

std::optional<size_t> ChooseProblem(QWidget* parent, const QString& title,
                                    const std::vector<ProblemEntry>& entries,
                                    const std::vector<size_t>& indexes, size_t selected) {
    QDialog dialog(parent);
    dialog.setWindowTitle(title);
    auto* layout = new QVBoxLayout(&dialog);
    auto* list = new QListWidget(&dialog);
    for (size_t i = 0; i < indexes.size(); ++i) {
        const ProblemEntry& entry = entries.at(indexes[i]);
        list->addItem(
            QString("%1  %2").arg(entry.m_nNumber).arg(QString::fromStdString(entry.m_sDescription)));
        if (indexes[i] == selected) list->setCurrentRow(static_cast<int>(i));
    }
    if (list->currentRow() < 0 && list->count() > 0) list->setCurrentRow(0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    layout->addWidget(list);
    layout->addWidget(buttons);
    dialog.resize(560, 420);
    if (dialog.exec() != QDialog::Accepted || list->currentRow() < 0) return std::nullopt;
    return indexes[static_cast<size_t>(list->currentRow())];
}

}  // namespace moremate::ui
