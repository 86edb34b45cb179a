// The one way the lower layers talk to the user: a report with a title, a text and a choice of
// buttons. The desktop window shows it as a message box; the command line prints it; tests record
// it. Code below the interface never decides how a report looks, only what it says.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace moremate {

enum class ReportButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class ReportAnswer { Ok, Cancel, Yes, No };
enum class ReportKind { Warning, Information, Error, Question };

// Interface language, the values of the LanguageId option.
enum Language : int { kPolish = 0, kEnglish = 1, kUkrainian = 2 };

// The title of a report of `kind` in the language `languageId` (unknown ids fall back to English).
std::string ReportTitle(ReportKind kind, int languageId);

// The answer a report gets when nobody is there to choose: Ok, or Yes for the yes/no questions.
ReportAnswer DefaultAnswer(ReportButtons buttons);

class CReporter {
  public:
    virtual ~CReporter() = default;
    // May be called from any thread; implementations serialise as they need.
    virtual ReportAnswer Report(const std::string& title, const std::string& text,
                                ReportButtons buttons = ReportButtons::Ok) = 0;
};

// Prints "title: text" on stderr and gives the default answer.
class CStderrReporter : public CReporter {
  public:
    ReportAnswer Report(const std::string& title, const std::string& text, ReportButtons buttons) override;
};

// Keeps every report; answers from a queue of scripted answers, then with the default answer.
class CRecordingReporter : public CReporter {
  public:
    struct TReport {
        std::string sTitle;
        std::string sText;
        ReportButtons buttons = ReportButtons::Ok;
    };

    ReportAnswer Report(const std::string& title, const std::string& text, ReportButtons buttons) override;
    void QueueAnswer(ReportAnswer answer);
    std::vector<TReport> Reports() const;

  private:
    mutable std::mutex m_mutex;
    std::vector<TReport> m_reports;
    std::deque<ReportAnswer> m_answers;
};

}  // namespace moremate
