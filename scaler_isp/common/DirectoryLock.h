#ifndef SCALER_ISP_COMMON_DIRECTORY_LOCK_H
#define SCALER_ISP_COMMON_DIRECTORY_LOCK_H

#include <string>

#include "scaler_isp/common/FileDescriptor.h"

/// An advisory lock (flock) on a directory, so that processes, and threads of one process, take
/// turns when they replace files in it. The destructor releases it.
class DirectoryLock {
  public:
    /// Waits at most five seconds. Throws CallFailure if another user holds the lock longer, or if
    /// a resource is missing. If the directory cannot be opened or the file system has no locks,
    /// nothing is locked: that alone must not prevent writing.
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
