// CLiChess: the tablebase's answer about one position. The cache first; else one query of the
// service, whose readable answer is then stored. Failures are reported: "No internet connection"
// once (nothing is asked after it), "Exception occurred in GetHTMLPage()" and unreadable answers
// each time. Safe to call from several threads: queries are made one at a time.
#pragma once

#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "answer_cache.h"
#include "core/chessboard.h"
#include "lichess_http.h"
#include "settings/options.h"
#include "settings/reporter.h"
#include "tablebase_answer.h"

namespace moremate {

inline constexpr const char* kUnreadableAnswer = "Unreadable answer of the online tablebase for ";
inline constexpr const char* kRepeatedAnswer = "Online tablebase data repeated for ";

struct TTablebaseLookup {
    TTablebaseAnswer answer;
    bool bFromCache = false;
};

struct TLiChessSettings {
    std::string sURL;
    int nTimeoutMs = 0;
    bool bWarnOnRepetition = false;  // report an answer about a position answered before
    int nLanguageId = kEnglish;
};

TLiChessSettings LiChessSettings(const TOptions& options);

class CLiChess {
  public:
    CLiChess(const TLiChessSettings& settings, const CTablebaseCache& cache, CReporter& reporter);

    // The readable answer about `board` (which must be askable: see WhyNotAskable), or none.
    // Setting `abort` (may be null) ends a query under way without a report.
    std::optional<TTablebaseLookup> Query(const TChessboard& board, const std::atomic<bool>* abort = nullptr);

    // True while the service has not failed to connect.
    bool Online() const;
    int ServiceQueries() const;

  private:
    std::optional<TTablebaseAnswer> AskService(const std::string& fen, const std::atomic<bool>* abort);
    void NoteAnswered(const std::string& name, const std::string& fen);
    void Report(ReportKind kind, const std::string& text);

    mutable std::mutex m_mutex;
    CLiChessHTTP m_http;
    const CTablebaseCache& m_cache;
    CReporter& m_reporter;
    bool m_bWarnOnRepetition;
    int m_nLanguageId;
    int m_nServiceQueries = 0;
    std::set<std::string> m_answered;
};

}  // namespace moremate
