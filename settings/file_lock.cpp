#include "file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace moremate {

CFileLock::CFileLock(const std::filesystem::path& path, int openFlags, bool bWait) {
    m_nFd = open(path.c_str(), openFlags | O_CLOEXEC, 0644);
    m_bHeld = m_nFd >= 0 && flock(m_nFd, LOCK_EX | (bWait ? 0 : LOCK_NB)) == 0;
}

CFileLock::~CFileLock() {
    if (m_nFd >= 0) close(m_nFd);  // closing releases the lock
}

}  // namespace moremate
