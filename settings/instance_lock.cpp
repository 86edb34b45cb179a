#include "instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace moremate {

CInstanceLock::CInstanceLock(const std::filesystem::path& folder) {
    m_nFd = open((folder / kInstanceLockFile).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    m_bHeld = m_nFd >= 0 && flock(m_nFd, LOCK_EX | LOCK_NB) == 0;
}

CInstanceLock::~CInstanceLock() {
    if (m_nFd >= 0) close(m_nFd);  // closing releases the lock
}

}  // namespace moremate
