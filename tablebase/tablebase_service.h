// Everything a command needs to ask the online tablebase: the instance lock that decides whether
// this instance may write the cache, the cache in the program folder and the client.
#pragma once

#include <filesystem>

#include "answer_cache.h"
#include "lichess.h"
#include "settings/instance_lock.h"
#include "settings/options.h"
#include "settings/reporter.h"

namespace moremate {

class CTablebaseService {
  public:
    // Tells `reporter` when this is not the first running instance (the cache is then read-only).
    CTablebaseService(const TOptions& options, CReporter& reporter,
                      const std::filesystem::path& programFolder);

    CLiChess& LiChess() { return m_liChess; }
    const CTablebaseCache& Cache() const { return m_cache; }

  private:
    CInstanceLock m_lock;
    CTablebaseCache m_cache;
    CLiChess m_liChess;
};

}  // namespace moremate
