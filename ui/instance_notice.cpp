#include "instance_notice.h"

#include "settings/instance_lock.h"

namespace moremate::ui {

ReportAnswer CInstanceNoticeFilter::Report(const std::string& title, const std::string& text,
                                           ReportButtons buttons) {
    if (text != kSecondInstanceReadOnly || m_nMode == 1) return m_next.Report(title, text, buttons);
    if (m_nMode == 2) m_status(text);
    return DefaultAnswer(buttons);
}

}  // namespace moremate::ui
