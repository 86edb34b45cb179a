#include "message_box_reporter.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QThread>

namespace moremate::ui {
namespace {

QMessageBox::StandardButtons Buttons(ReportButtons buttons) {
    switch (buttons) {
        case ReportButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case ReportButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case ReportButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        default:
            return QMessageBox::Ok;
    }
}

ReportAnswer Answer(int button) {
    switch (button) {
        case QMessageBox::Cancel:
            return ReportAnswer::Cancel;
        case QMessageBox::Yes:
            return ReportAnswer::Yes;
        case QMessageBox::No:
            return ReportAnswer::No;
        default:
            return ReportAnswer::Ok;
    }
}

}  // namespace

ReportAnswer CMessageBoxReporter::Report(const std::string& title, const std::string& text,
                                         ReportButtons buttons) {
    if (m_bClosed) return DefaultAnswer(buttons);
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) return Show(title, text, buttons);
    ReportAnswer answer = DefaultAnswer(buttons);
    QMetaObject::invokeMethod(
        this, [&] { answer = Show(title, text, buttons); }, Qt::BlockingQueuedConnection);
    return answer;
}

ReportAnswer CMessageBoxReporter::Show(const std::string& title, const std::string& text,
                                       ReportButtons buttons) {
    const bool question = buttons == ReportButtons::YesNo || buttons == ReportButtons::YesNoCancel;
    QMessageBox box(question ? QMessageBox::Question : QMessageBox::Information,
                    QString::fromStdString(title), QString::fromStdString(text), Buttons(buttons), m_pParent);
    return Answer(box.exec());
}

}  // namespace moremate::ui
