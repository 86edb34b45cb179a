#include "progress_text.h"

#include "texts.h"

namespace moremate::ui {

QString ProgressAreaText(const TRunProgress& progress, uint64_t globalRegisterBytes, int language) {
    const double seconds = static_cast<double>(progress.elapsed.count()) / 1000.0;
    const double perSecond = seconds > 0 ? static_cast<double>(progress.nodes) / seconds : 0;
    QString text = QString::fromStdString(progress.passStatus);
    text += "\nThrds=" + QString::fromStdString(progress.threadFigures).trimmed();
    text += QString(" GR=%1 MB").arg(globalRegisterBytes / (1024 * 1024));
    text += "\n" + UiText("label.time", language).arg(seconds, 0, 'f', 0).arg(perSecond, 0, 'f', 0);
    if (!progress.observed.empty()) text += "\n" + QString::fromStdString(progress.observed);
    return text;
}

}  // namespace moremate::ui
