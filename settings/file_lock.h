// An exclusive flock(2) on an opened file or folder, held while the object lives; the system
// drops it when the process dies.
#pragma once

#include <filesystem>

namespace moremate {

class CFileLock {
  public:
    // Opens `path` with `openFlags` and takes the lock: waited for when `bWait`, else tried once.
    CFileLock(const std::filesystem::path& path, int openFlags, bool bWait);
    ~CFileLock();
    CFileLock(const CFileLock&) = delete;
    CFileLock& operator=(const CFileLock&) = delete;

    bool Held() const { return m_bHeld; }

  private:
    int m_nFd = -1;
    bool m_bHeld = false;
};

}  // namespace moremate
