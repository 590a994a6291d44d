#include "station/DeviceLock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "ConsoleStreams.h"
#include "station/Sha256.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxHolderBytes = 1024;
constexpr std::size_t kNameDigits = 16;
constexpr int kAttempts = 5;
constexpr std::chrono::milliseconds kPause{10};

// In one directory for all users, because a user may have no right to write to the library's.
// Not TMPDIR, which differs from user to user.
fs::path LockFile(const fs::path &directory, int interface) {
    std::error_code error;
    const fs::path resolved = fs::canonical(directory, error);
    const std::string hash = Sha256Of((error ? directory : resolved).string());
    return fmt::format("/tmp/ispctl-{}-{}.lock", hash.substr(0, kNameDigits), interface);
}

std::string FirstLine(int descriptor) {
    std::array<char, kMaxHolderBytes> buffer{};
    const long count = ::pread(descriptor, buffer.data(), buffer.size(), 0);
    const std::string text(buffer.data(), static_cast<std::size_t>(std::max(count, 0L)));
    return text.substr(0, text.find('\n'));
}

} // namespace

DeviceLock::DeviceLock(const fs::path &directory, int interface)
    : m_file(LockFile(directory, interface)) {}

// Others may own the file: systems refuse O_CREAT for a file of somebody else in such a directory.
bool DeviceLock::OpenFile() {
    constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    m_descriptor = Descriptor(::open(m_file.c_str(), kFlags)); // NOLINT(*-vararg)
    if (!m_descriptor.IsOpen() && errno == ENOENT) {
        m_descriptor =
            Descriptor(::open(m_file.c_str(), kFlags | O_CREAT, 0666)); // NOLINT(*-vararg)
        if (m_descriptor.IsOpen()) {
            ::fchmod(m_descriptor.Number(), 0666); // whatever the umask is
        }
    }
    return m_descriptor.IsOpen();
}

/// Whether the path still leads to the open file: who opens it afterwards locks that one.
bool DeviceLock::IsCurrent() const {
    struct stat opened {};
    struct stat named {};
    return ::fstat(m_descriptor.Number(), &opened) == 0 && ::lstat(m_file.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// Somebody else may be creating the file: it is refused to others until it has its permissions.
bool DeviceLock::Open() {
    for (int attempt = 1; !OpenFile() && errno == EACCES && attempt < kAttempts; ++attempt) {
        std::this_thread::sleep_for(kPause);
    }
    struct stat status {};
    if (!m_descriptor.IsOpen() || ::fstat(m_descriptor.Number(), &status) != 0) {
        m_problem =
            fmt::format("cannot lock the device: {}: {}", m_file.string(), std::strerror(errno));
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        m_problem =
            fmt::format("cannot lock the device: {} is not a file; remove it", m_file.string());
    }
    return m_problem.empty();
}

// A waiting process may get the lock of a file that was removed meanwhile: it locks nobody out.
bool DeviceLock::Take(const std::string &holder) {
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        if (!m_descriptor.IsOpen() && !Open()) {
            return false;
        }
        if (::flock(m_descriptor.Number(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK && errno != EINTR) {
                m_problem = fmt::format("cannot lock the device: {}: {}", m_file.string(),
                                        std::strerror(errno));
            }
            m_holder = FirstLine(m_descriptor.Number());
            return false;
        }
        if (IsCurrent()) {
            WriteHolder(holder);
            return true;
        }
        m_descriptor.Close();
    }
    return false;
}

// For people only: the lock holds whether this can be written or not.
void DeviceLock::WriteHolder(const std::string &holder) const {
    if (::ftruncate(m_descriptor.Number(), 0) == 0) {
        const std::string line = holder.substr(0, kMaxHolderBytes - 1) + "\n";
        [[maybe_unused]] const auto written =
            ::pwrite(m_descriptor.Number(), line.data(), line.size(), 0);
    }
}

} // namespace ispctl
