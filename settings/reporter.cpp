#include "reporter.h"

#include <iostream>

namespace moremate {

std::string ReportTitle(ReportKind kind, int languageId) {
    // Deliberately partial: warnings and errors are titled in English in every language; only
    // information and question titles are translated.
    switch (kind) {
        case ReportKind::Warning:
            return "Warning";
        case ReportKind::Error:
            return "Error";
        case ReportKind::Information:
            if (languageId == kPolish) return "Informacja";
            if (languageId == kUkrainian) return "Інформація";
            return "Information";
        case ReportKind::Question:
            if (languageId == kPolish) return "Pytanie";
            if (languageId == kUkrainian) return "Питання";
            return "Question";
    }
    return "Information";
}

ReportAnswer DefaultAnswer(ReportButtons buttons) {
    return buttons == ReportButtons::YesNo || buttons == ReportButtons::YesNoCancel ? ReportAnswer::Yes
                                                                                    : ReportAnswer::Ok;
}

ReportAnswer CStderrReporter::Report(const std::string& title, const std::string& text,
                                     ReportButtons buttons) {
    // One insertion, so that reports of concurrent threads do not interleave within a line.
    std::cerr << title + ": " + text + "\n" << std::flush;
    return DefaultAnswer(buttons);
}

ReportAnswer CRecordingReporter::Report(const std::string& title, const std::string& text,
                                        ReportButtons buttons) {
    std::lock_guard lock(m_mutex);
    m_reports.push_back({title, text, buttons});
    if (m_answers.empty()) return DefaultAnswer(buttons);
    ReportAnswer answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

void CRecordingReporter::QueueAnswer(ReportAnswer answer) {
    std::lock_guard lock(m_mutex);
    m_answers.push_back(answer);
}

std::vector<CRecordingReporter::TReport> CRecordingReporter::Reports() const {
    std::lock_guard lock(m_mutex);
    return m_reports;
}

}  // namespace moremate
