#include "lichess.h"

#include "answer_reader.h"
#include "core/chess_exception.h"
#include "tablebase_position.h"

namespace moremate {

TLiChessSettings LiChessSettings(const TOptions& options) {
    return {.sURL = options.m_sTablebaseURL,
            .nTimeoutMs = options.m_nTablebaseTimeoutMs,
            .bWarnOnRepetition = options.m_bWarningOnLichessDataRepetition,
            .nLanguageId = options.m_nLanguageId};
}

CLiChess::CLiChess(const TLiChessSettings& settings, const CTablebaseCache& cache, CReporter& reporter)
    : m_http(settings.sURL, settings.nTimeoutMs),
      m_cache(cache),
      m_reporter(reporter),
      m_bWarnOnRepetition(settings.bWarnOnRepetition),
      m_nLanguageId(settings.nLanguageId) {}

void CLiChess::Report(ReportKind kind, const std::string& text) {
    m_reporter.Report(ReportTitle(kind, m_nLanguageId), text);
}

std::optional<TTablebaseAnswer> CLiChess::AskService(const std::string& fen, const std::atomic<bool>* abort) {
    const bool wasOffline = m_http.Offline();
    const std::optional<std::string> body = m_http.Query(fen, abort);
    if (!body) {
        if (!wasOffline && !m_http.LastError().empty()) Report(ReportKind::Warning, m_http.LastError());
        return std::nullopt;
    }
    ++m_nServiceQueries;
    TTablebaseAnswer answer = ReadTablebaseAnswer(*body);
    if (!answer.Readable()) {
        Report(ReportKind::Warning, kUnreadableAnswer + fen);
        return std::nullopt;
    }
    return answer;
}

void CLiChess::NoteAnswered(const std::string& name, const std::string& fen) {
    if (!m_answered.insert(name).second && m_bWarnOnRepetition)
        Report(ReportKind::Warning, kRepeatedAnswer + fen);
}

std::optional<TTablebaseLookup> CLiChess::Query(const TChessboard& board, const std::atomic<bool>* abort) {
    const std::string fen = TablebaseFen(board);
    const std::string name = CacheName(board);
    std::lock_guard lock(m_mutex);
    std::optional<TTablebaseAnswer> cached;
    try {
        cached = m_cache.Find(name, fen);
    } catch (const ChessException& e) {  // no answer file there: reported, and asked again
        Report(ReportKind::Warning, e.what());
    }
    if (cached) {
        NoteAnswered(name, fen);
        return TTablebaseLookup{std::move(*cached), true};
    }
    std::optional<TTablebaseAnswer> answer = AskService(fen, abort);
    if (!answer) return std::nullopt;
    NoteAnswered(name, fen);
    m_cache.Store(name, fen, *answer);
    return TTablebaseLookup{std::move(*answer), false};
}

bool CLiChess::Online() const {
    std::lock_guard lock(m_mutex);
    return !m_http.Offline();
}

int CLiChess::ServiceQueries() const {
    std::lock_guard lock(m_mutex);
    return m_nServiceQueries;
}

}  // namespace moremate
