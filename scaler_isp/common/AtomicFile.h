#ifndef SCALER_ISP_COMMON_ATOMIC_FILE_H
#define SCALER_ISP_COMMON_ATOMIC_FILE_H

#include <string>

#include "scaler_isp/common/DirectoryLock.h"

enum class SaveResult {
    Written,
    CannotOpen, ///< it for writing; nothing has changed
    Failed      ///< the file has its old bytes
};

/// Reads a file and replaces its bytes so that at every moment it holds all old or all new ones,
/// even if the process is killed or the disk is full. Concurrent users take turns: the directory is
/// locked from before the file is read until the object is destroyed.
///
/// The new bytes go to a temporary file in the same directory, which is renamed. A symbolic link
/// stays and its target is replaced; mode, owner and extended attributes are preserved. The file is
/// overwritten in place if it has several hard links, is not a regular file, or if it or its
/// directory does not permit the rename; the old bytes are then restored after a failed write, but
/// not if the process is killed. Nothing is synced to the disk, so this is no protection against a
/// power cut.
class AtomicFile {
  public:
    /// Throws CallFailure if the lock is not obtained in time, or if a resource is missing.
    explicit AtomicFile(const std::string &path);

    /// The old bytes; none if the file does not exist or cannot be read.
    const std::string &Bytes() const {
        return m_bytes;
    }

    /// A file that exists but could not be read completely is never replaced.
    SaveResult Replace(const std::string &bytes);

  private:
    struct OldFile;

    SaveResult Create(const std::string &bytes) const;
    SaveResult ReplaceExisting(const std::string &bytes) const;
    int ReplaceByRename(const std::string &bytes, OldFile *old) const;
    int WriteTemporary(const std::string &temporary, const std::string &bytes,
                       const OldFile *old) const;

    std::string m_path; ///< links resolved; a symbolic link only if its target is unknown
    std::string m_directory;
    DirectoryLock m_lock;
    std::string m_bytes;
    int m_readError = 0; ///< errno
};

#endif
