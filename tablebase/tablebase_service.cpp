#include "tablebase_service.h"

namespace moremate {

CTablebaseService::CTablebaseService(const TOptions& options, CReporter& reporter,
                                     const std::filesystem::path& programFolder)
    : m_lock(programFolder),
      m_cache(programFolder / kTablebaseCacheFolder, !m_lock.FirstInstance()),
      m_liChess(LiChessSettings(options), m_cache, reporter) {
    if (m_cache.ReadOnly())
        reporter.Report(ReportTitle(ReportKind::Information, options.m_nLanguageId), kSecondInstanceReadOnly);
}

}  // namespace moremate
