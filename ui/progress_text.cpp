#include "progress_text.h"

#include "texts.h"

namespace moremate::ui {

std::string PeekedLines(const std::string& observed, int peek) {
    constexpr std::string_view kPrefix = "Observed: ", kSeparator = " | ";
    if (peek <= 0 || !observed.starts_with(kPrefix)) return observed;
    size_t start = kPrefix.size();
    for (int line = 1; line < peek; ++line) {
        start = observed.find(kSeparator, start);
        if (start == std::string::npos) return "";
        start += kSeparator.size();
    }
    const size_t end = observed.find(kSeparator, start);
    return std::string(kPrefix) + observed.substr(start, end == std::string::npos ? end : end - start);
}

QString ProgressAreaText(const TRunProgress& progress, uint64_t globalRegisterBytes, int language, int peek) {
    const double seconds = static_cast<double>(progress.elapsed.count()) / 1000.0;
    const double perSecond = seconds > 0 ? static_cast<double>(progress.nodes) / seconds : 0;
    QString text = QString::fromStdString(progress.passStatus);
    text += "\nThrds=" + QString::fromStdString(progress.threadFigures).trimmed();
    text += QString(" GR=%1 MB").arg(globalRegisterBytes / (1024 * 1024));
    text += "\n" + UiText("label.time", language).arg(seconds, 0, 'f', 0).arg(perSecond, 0, 'f', 0);
    const std::string observed = PeekedLines(progress.observed, peek);
    if (!observed.empty()) text += "\n" + QString::fromStdString(observed);
    return text;
}

}  // namespace moremate::ui
