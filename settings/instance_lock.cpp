#include "instance_lock.h"

#include <fcntl.h>

namespace moremate {

CInstanceLock::CInstanceLock(const std::filesystem::path& folder)
    : m_lock(folder / kInstanceLockFile, O_RDWR | O_CREAT, false) {}

}  // namespace moremate
