#include "edid/EdidSource.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "edid/EdidBytes.h"

namespace ispctl::edid {
namespace {

// For the writer of a named pipe that is started at the same time.
constexpr int kWaitForWriterMs = 2000;
constexpr int kWaitStepMs = 50;

/// One descriptor, which is closed unless it is standard input.
class Source {
  public:
    explicit Source(const std::string &name)
        : m_isStandardInput(name == "-"),
          // Without O_NONBLOCK a named pipe that has no writer would never be opened.
          m_descriptor(m_isStandardInput
                           ? STDIN_FILENO
                           : open(name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        struct stat state {};
        m_awaitsWriter = !m_isStandardInput && IsOpen() && fstat(m_descriptor, &state) == 0 &&
                         S_ISFIFO(state.st_mode);
    }
    ~Source() {
        if (!m_isStandardInput && m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;

    bool IsOpen() const {
        return m_descriptor >= 0;
    }
    /// Whether a named pipe was left because nobody opened it for writing.
    bool LacksWriter() const {
        return m_awaitsWriter && m_waitedMs >= kWaitForWriterMs;
    }

    /// RETURNS the number of bytes, 0 at the end, -1 with errno.
    ssize_t Read(char *buffer, std::size_t size) {
        for (;;) {
            const ssize_t count = read(m_descriptor, buffer, size);
            if (count > 0) {
                m_awaitsWriter = false;
                return count;
            }
            if (count == 0 && !MayGetWriter()) {
                return 0;
            }
            if (count < 0 && errno == EAGAIN) {
                m_awaitsWriter = false; // somebody has opened it and not written yet
                Poll(-1);
            } else if (count < 0 && errno != EINTR) {
                return -1;
            }
        }
    }

  private:
    /// RETURNS the events of poll.
    int Poll(int milliseconds) const {
        pollfd wanted{m_descriptor, POLLIN, 0};
        return poll(&wanted, 1, milliseconds) > 0 ? wanted.revents : 0;
    }

    /// Until a named pipe has a writer, a read finds its end. RETURNS false if a writer has come
    /// and gone, or none came in time.
    bool MayGetWriter() {
        if (!m_awaitsWriter || m_waitedMs >= kWaitForWriterMs) {
            return false;
        }
        m_waitedMs += kWaitStepMs;
        return (Poll(kWaitStepMs) & POLLHUP) == 0;
    }

    bool m_isStandardInput;
    int m_descriptor;
    bool m_awaitsWriter = false;
    int m_waitedMs = 0;
};

} // namespace

std::optional<std::string> ReadSource(const std::string &name, Finding &problem) {
    const std::string shown = name == "-" ? "standard input" : name;
    const auto fail = [&](FindingId id, const std::string &message) {
        problem = MakeFinding(id, std::nullopt, message);
        return std::nullopt;
    };
    const auto failRead = [&] {
        return fail(FindingId::Unreadable,
                    fmt::format("cannot read {}: {}", shown, std::strerror(errno)));
    };
    Source source(name);
    if (!source.IsOpen()) {
        return failRead();
    }
    std::string content(kMaxInputBytes + 1, '\0');
    std::size_t size = 0;
    while (size < content.size()) {
        const ssize_t count = source.Read(content.data() + size, content.size() - size);
        if (count < 0) {
            return failRead();
        }
        if (count == 0 && source.LacksWriter()) {
            return fail(FindingId::Unreadable,
                        fmt::format("cannot read {}: nobody writes to this pipe", shown));
        }
        if (count == 0) {
            content.resize(size);
            return content;
        }
        size += static_cast<std::size_t>(count);
    }
    return fail(FindingId::TooLarge,
                fmt::format("{} is too large: at most {} bytes ({} KiB) are read", shown,
                            kMaxInputBytes, kMaxInputBytes / 1024));
}

} // namespace ispctl::edid
