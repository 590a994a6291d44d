#include "station/StationFile.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "ConsoleStreams.h"

namespace ispctl {
namespace {

using std::chrono::milliseconds;

/// A writer holds the lock for the time of one write. Whoever holds it longer is no writer, and
/// must not keep a record from being written.
constexpr milliseconds kLongestWait{5000};
constexpr milliseconds kPause{10};

class FileLock {
  public:
    explicit FileLock(int descriptor) : m_descriptor(descriptor) {
        const auto end = std::chrono::steady_clock::now() + kLongestWait;
        while (!Try() && (errno == EWOULDBLOCK || errno == EINTR) &&
               std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(kPause);
        }
    }
    ~FileLock() {
        ::flock(m_descriptor, LOCK_UN);
    }
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    bool IsHeld() const {
        return m_isHeld;
    }

  private:
    bool Try() {
        m_isHeld = ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0;
        return m_isHeld;
    }

    int m_descriptor;
    bool m_isHeld = false;
};

} // namespace

bool StationFile::Open(const std::string &file, std::string &error) {
    constexpr int kFlags = O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    m_name = file;
    m_descriptor = Descriptor(::open(file.c_str(), kFlags | O_RDWR, 0666)); // NOLINT(*-vararg)
    if (!m_descriptor.IsOpen() && errno == EACCES) {
        m_isReadable = false;
        m_descriptor =
            Descriptor(::open(file.c_str(), kFlags | O_WRONLY, 0666)); // NOLINT(*-vararg)
    }
    struct stat status {};
    if (!m_descriptor.IsOpen() || ::fstat(m_descriptor.Number(), &status) != 0) {
        error = fmt::format("cannot write the station file {}: {}", file, std::strerror(errno));
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        error = fmt::format("the station file {} is a pipe or a device; name a file", file);
        return false;
    }
    return true;
}

bool StationFile::EndsInsideLine() const {
    const off_t size = ::lseek(m_descriptor.Number(), 0, SEEK_END);
    char last = '\n';
    return m_isReadable && size > 0 && ::pread(m_descriptor.Number(), &last, 1, size - 1) == 1 &&
           last != '\n';
}

bool StationFile::Append(std::string_view line, std::string &error) const {
    const FileLock lock(m_descriptor.Number());
    const std::string text = (EndsInsideLine() ? "\n" : "") + std::string(line);
    const off_t size = ::lseek(m_descriptor.Number(), 0, SEEK_END);
    const ssize_t written = ::write(m_descriptor.Number(), text.data(), text.size());
    if (written == static_cast<ssize_t>(text.size())) {
        return true;
    }
    const int number = written < 0 ? errno : ENOSPC;
    // Without the lock the end of the file may be the record of another run.
    if (written > 0 && (!lock.IsHeld() || ::ftruncate(m_descriptor.Number(), size) != 0)) {
        error = fmt::format("the record in {} is incomplete: {}", m_name, std::strerror(number));
        return false;
    }
    error = fmt::format("cannot write the record to {}: {}", m_name, std::strerror(number));
    return false;
}

} // namespace ispctl
