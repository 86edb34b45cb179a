#include "library_text_reporter.h"

#include "library_texts.h"

namespace moremate::ui {

ReportAnswer CLibraryTextReporter::Report(const std::string& title, const std::string& text,
                                          ReportButtons buttons) {
    const int language = m_nLanguage;
    return m_target.Report(LibraryText(title, language), LibraryText(text, language), buttons);
}

}  // namespace moremate::ui
