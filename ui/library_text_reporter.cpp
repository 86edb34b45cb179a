#include "library_text_reporter.h"

#include "library_texts.h"

namespace moremate::ui {
namespace {

// The titles of information and questions the libraries give in English.
std::string Title(const std::string& title, int language) {
    for (ReportKind kind : {ReportKind::Information, ReportKind::Question})
        if (title == ReportTitle(kind, kEnglish)) return ReportTitle(kind, language);
    return LibraryText(title, language);
}

}  // namespace

ReportAnswer CLibraryTextReporter::Report(const std::string& title, const std::string& text,
                                          ReportButtons buttons) {
    const int language = m_nLanguage;
    return m_target.Report(Title(title, language), LibraryText(text, language), buttons);
}

}  // namespace moremate::ui
