#include "scaler_isp/common/DirectoryLock.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

#include "scaler_isp/common/CallFailure.h"

namespace {

constexpr std::chrono::seconds kLongestWait{5};
constexpr std::chrono::milliseconds kPause{1};

/// EBADF: over NFS, Linux locks exclusively only by a descriptor that is open for writing.
bool IsWithoutLocks(int error) {
    return error == ENOTSUP || error == EOPNOTSUPP || error == ENOLCK || error == EINVAL ||
           error == ENOSYS || error == EBADF;
}

/// RETURNS 0, or errno: EWOULDBLOCK if another user holds the lock.
int TryLock(int descriptor) {
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

DirectoryLock::DirectoryLock(const std::string &directory)
    : m_directory(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!m_directory.IsOpen()) {
        if (IsErrorOfPath(errno)) {
            return;
        }
        throw CallFailure(errno);
    }
    const auto end = std::chrono::steady_clock::now() + kLongestWait;
    int error = TryLock(m_directory.Get());
    while (error == EWOULDBLOCK && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kPause);
        error = TryLock(m_directory.Get());
    }
    m_held = error == 0;
    if (!m_held && !IsWithoutLocks(error)) {
        throw CallFailure(error);
    }
}

DirectoryLock::~DirectoryLock() {
    if (m_held) {
        // Unlocked explicitly, because a process forked meanwhile shares the descriptor, so that
        // closing it would not unlock.
        ::flock(m_directory.Get(), LOCK_UN);
    }
}
