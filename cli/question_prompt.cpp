#include "question_prompt.h"

#include <fmt/core.h>
#include <unistd.h>

#include <iostream>
#include <string>

namespace moremate::cli {
namespace {

bool Asked(const std::string& title, const std::string& text) {
    fmt::print(stderr, "{}: {} [y/n] ", title, text);
    std::fflush(stderr);
    std::string line;
    return std::getline(std::cin, line) && (line.starts_with('y') || line.starts_with('Y'));
}

}  // namespace

ReportAnswer CQuestionPrompt::Report(const std::string& title, const std::string& text,
                                     ReportButtons buttons) {
    if (buttons != ReportButtons::YesNo) return m_reporter.Report(title, text, buttons);
    const bool yes = m_answer ? *m_answer : isatty(STDIN_FILENO) && Asked(title, text);
    return yes ? ReportAnswer::Yes : ReportAnswer::No;
}

}  // namespace moremate::cli
