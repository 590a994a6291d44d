#ifndef SCALER_ISP_COMMON_DIRECTORY_LOCK_H
#define SCALER_ISP_COMMON_DIRECTORY_LOCK_H

#include <string>

#include "scaler_isp/common/FileDescriptor.h"

/// An advisory lock (flock) on a directory, by which those who replace files in it take turns:
/// processes, and the threads of one process. Released by the destructor.
class DirectoryLock {
  public:
    /// Waits at most five seconds. Throws CallFailure if somebody else holds the lock that long, or
    /// if a resource is missing. A directory that cannot be opened, and a file system without
    /// locks, are no reason not to write: then nothing is locked.
    explicit DirectoryLock(const std::string &directory);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock &) = delete;
    DirectoryLock &operator=(const DirectoryLock &) = delete;

    bool IsHeld() const {
        return m_held;
    }

  private:
    FileDescriptor m_directory;
    bool m_held = false;
};

#endif
