// The single-instance guard: the first running instance of the program holds a lock on a file in
// the program folder for as long as it runs. Files that every instance shares (the tablebase's
// answers) are written only by the instance that holds it; the others only read them.
#pragma once

#include <filesystem>

#include "file_lock.h"

namespace moremate {

inline constexpr const char* kInstanceLockFile = "moremate.lock";
inline constexpr const char* kSecondInstanceReadOnly =
    "Since it is not the first running instance of the program, it will be opened in read-only mode "
    "for .lichess files.";

class CInstanceLock {
  public:
    // Tries the lock in `folder`; a folder where the lock file cannot be made counts as held by
    // another instance, so that nothing is written there.
    explicit CInstanceLock(const std::filesystem::path& folder);

    bool FirstInstance() const { return m_lock.Held(); }

  private:
    CFileLock m_lock;
};

}  // namespace moremate
