// The check whether the positions of a text file's FEN codes are problems of the open collection.
#include <QFileDialog>
#include <fstream>

#include "core/fen.h"
#include "main_window.h"
#include "texts.h"

namespace moremate::ui {

// Each line that reads as a FEN is looked for among the collection's positions; the report counts
// them and names those missing.
void TMainWindow::CheckFenFile() {
    if (m_collection.Size() == 0) return;
    const QString name = QFileDialog::getOpenFileName(this, Title("adv.fencheck"));
    if (name.isEmpty()) return;
    std::ifstream in(name.toStdString());
    if (!in) return ReportError(Text("msg.fileopenerror").arg(name).toStdString());
    int codes = 0;
    QStringList missing;
    for (std::string line; std::getline(in, line);) {
        TStartPosition position;
        if (!ReadFen(line, position.board)) continue;
        ++codes;
        bool found = false;
        for (size_t i = 0; i < m_collection.Size() && !found; ++i)
            found = m_collection.At(i).m_position == position;
        if (!found) missing << QString::fromStdString(line);
    }
    Inform((Text("msg.fencheck").arg(codes).arg(codes - missing.size()) +
            (missing.isEmpty() ? QString() : "\n" + missing.join('\n')))
               .toStdString());
}

}  // namespace moremate::ui
