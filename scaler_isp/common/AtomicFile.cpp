#include "scaler_isp/common/AtomicFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/FileBytes.h"
#include "scaler_isp/common/FileDescriptor.h"
#include "scaler_isp/common/PathResolution.h"
#include "scaler_isp/common/Platform.h"

namespace {

// The same for all files of a directory, because only one is replaced at a time. A name derived
// from the file's could be too long.
constexpr const char *kTemporaryName = ".ScalerIsp.tmp";
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPrivateMode = 0600; // until the mode of the old file has been copied
constexpr mode_t kModeBits = 07777;
constexpr int kWriteFlags = O_WRONLY | O_CLOEXEC;

bool IsLink(const std::string &path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) {
        return S_ISLNK(status.st_mode);
    }
    if (!IsErrorOfPath(errno)) {
        throw CallFailure(errno); // a guess could replace the link instead of its target
    }
    return false;
}

/// The target of a symbolic link; the path itself if it is not a link, or one that leads nowhere.
std::string FollowLinks(const std::string &path) {
    if (!IsLink(path) || UsesFileAsDirectory(path)) {
        return path;
    }
    const std::unique_ptr<char, void (*)(void *)> target(::realpath(path.c_str(), nullptr),
                                                         std::free);
    if (target == nullptr && !IsErrorOfPath(errno)) {
        throw CallFailure(errno);
    }
    return target != nullptr ? target.get() : path;
}

/// Ends in "/"; empty for the current directory.
std::string DirectoryOf(const std::string &path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// A failed open means CannotOpen only if the file is the cause, not a shortage in the process or
/// the system.
SaveResult ResultOfFailedOpen(int error) {
    const bool shortage = error == EMFILE || error == ENFILE || error == ENOMEM;
    return shortage ? SaveResult::Failed : SaveResult::CannotOpen;
}

/// Whether the file or its directory is the cause of a failure, so that overwriting in place may
/// work. EISDIR: a directory has the temporary name; macOS reports that as EPERM.
bool PreventsRename(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EXDEV ||
           error == EBUSY || error == EISDIR;
}

/// RETURNS 0, or errno.
int CopyAttributes(const FileDescriptor &oldFile, const struct stat &old,
                   const FileDescriptor &newFile) {
    struct stat status {};
    if (::fstat(newFile.Get(), &status) != 0) {
        return errno;
    }
    const bool sameOwner = status.st_uid == old.st_uid && status.st_gid == old.st_gid;
    if (!sameOwner && ::fchown(newFile.Get(), old.st_uid, old.st_gid) != 0) {
        return errno;
    }
    if (const int error = PlatformCopyAttributes(oldFile.Get(), newFile.Get()); error != 0) {
        return error == ENOTSUP ? EPERM : error; // not every file system keeps every attribute
    }
    return ::fchmod(newFile.Get(), old.st_mode & kModeBits) != 0 ? errno : 0;
}

struct UnlinkUnlessRenamed {
    explicit UnlinkUnlessRenamed(const std::string &file) : path(file) {}
    ~UnlinkUnlessRenamed() {
        if (!renamed) {
            ::unlink(path.c_str());
        }
    }
    UnlinkUnlessRenamed(const UnlinkUnlessRenamed &) = delete;
    UnlinkUnlessRenamed &operator=(const UnlinkUnlessRenamed &) = delete;

    const std::string &path;
    bool renamed = false;
};

/// Writes before it truncates, so that the old bytes can be restored even on a full disk.
bool Overwrite(FileDescriptor &file, bool regular, const std::string &bytes) {
    const bool written =
        (!regular || ::lseek(file.Get(), 0, SEEK_SET) == 0) &&
        WriteFileBytes(file.Get(), bytes) == 0 &&
        (!regular || ::ftruncate(file.Get(), static_cast<off_t>(bytes.size())) == 0);
    return file.Close() == 0 && written;
}

} // namespace

struct AtomicFile::OldFile {
    FileDescriptor file; ///< open for writing, which proves that it may be written
    struct stat status;
};

AtomicFile::AtomicFile(const std::string &path)
    : m_path(FollowLinks(path)), m_directory(DirectoryOf(m_path)),
      m_lock(m_directory.empty() ? "." : m_directory) {
    try {
        m_bytes = ReadFileBytes(m_path);
    } catch (const CallFailure &failure) {
        m_readError = failure.Error();
    }
}

SaveResult AtomicFile::Replace(const std::string &bytes) {
    if (m_path.empty()) {
        return SaveResult::CannotOpen;
    }
    return m_readError == ENOENT ? Create(bytes) : ReplaceExisting(bytes);
}

SaveResult AtomicFile::Create(const std::string &bytes) const {
    const int error = ReplaceByRename(bytes, nullptr);
    // If the path itself is the cause, the open below fails as well and gives the right result.
    if (!PreventsRename(error) && !IsErrorOfPath(error)) {
        return error == 0 ? SaveResult::Written : SaveResult::Failed;
    }
    FileDescriptor file(::open(m_path.c_str(), kWriteFlags | O_CREAT, kNewFileMode));
    if (!file.IsOpen()) {
        return ResultOfFailedOpen(errno);
    }
    if (WriteFileBytes(file.Get(), bytes) == 0 && file.Close() == 0) {
        return SaveResult::Written;
    }
    ::unlink(FollowLinks(m_path).c_str());
    return SaveResult::Failed;
}

SaveResult AtomicFile::ReplaceExisting(const std::string &bytes) const {
    OldFile old{FileDescriptor(::open(m_path.c_str(), kWriteFlags)), {}};
    if (!old.file.IsOpen()) {
        return ResultOfFailedOpen(errno);
    }
    if (m_readError != 0 || ::fstat(old.file.Get(), &old.status) != 0) {
        return SaveResult::Failed;
    }
    const bool regular = S_ISREG(old.status.st_mode);
    if (regular && old.status.st_nlink == 1) {
        const int error = ReplaceByRename(bytes, &old);
        if (!PreventsRename(error)) {
            return error == 0 ? SaveResult::Written : SaveResult::Failed;
        }
        old.file.Reset(::open(m_path.c_str(), kWriteFlags)); // ReplaceByRename has closed it
    }
    if (!old.file.IsOpen()) {
        return SaveResult::Failed;
    }
    if (Overwrite(old.file, regular, bytes)) {
        return SaveResult::Written;
    }
    if (regular) {
        old.file.Reset(::open(m_path.c_str(), kWriteFlags));
        Overwrite(old.file, regular, m_bytes);
    }
    return SaveResult::Failed;
}

/// RETURNS 0, or errno after removing the temporary file.
int AtomicFile::ReplaceByRename(const std::string &bytes, OldFile *old) const {
    if (IsLink(m_path)) {
        return EXDEV; // its target is unknown, and a rename would replace the link
    }
    const std::string temporary = m_directory + kTemporaryName;
    // The holder of the lock owns the name: an existing file was left by a killed process.
    if (::unlink(temporary.c_str()) != 0 && errno != ENOENT) {
        return errno;
    }
    // On every way out, also if memory runs out, unless the file has got its name.
    UnlinkUnlessRenamed guard{temporary};
    int error = WriteTemporary(temporary, bytes, old);
    if (old != nullptr) {
        old->file.Close(); // after the rename, closing would wait for the disk
    }
    if (error == 0 && ::rename(temporary.c_str(), m_path.c_str()) != 0) {
        error = errno;
    }
    guard.renamed = error == 0;
    return error;
}

int AtomicFile::WriteTemporary(const std::string &temporary, const std::string &bytes,
                               const OldFile *old) const {
    FileDescriptor file(::open(temporary.c_str(), kWriteFlags | O_CREAT | O_EXCL | O_NOFOLLOW,
                               old != nullptr ? kPrivateMode : kNewFileMode));
    struct stat mine {};
    if (!file.IsOpen() || ::fstat(file.Get(), &mine) != 0) {
        return errno;
    }
    int error = WriteFileBytes(file.Get(), bytes);
    if (error == 0 && old != nullptr) {
        error = CopyAttributes(old->file, old->status, file);
    }
    const int closeError = file.Close();
    // Without a lock, another process may have replaced the temporary file with its own.
    struct stat there {};
    const bool isMine =
        m_lock.IsHeld() || (::lstat(temporary.c_str(), &there) == 0 && there.st_ino == mine.st_ino);
    if (error == 0) {
        error = isMine ? closeError : EIO;
    }
    return error;
}
