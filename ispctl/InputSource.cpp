#include "InputSource.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace ispctl {
namespace {

// For the writer of a named pipe that is started at the same time.
constexpr int kWaitForWriterMs = 2000;
constexpr int kWaitStepMs = 50;

} // namespace

InputSource InputSource::Open(const std::string &name) {
    // Without O_NONBLOCK a named pipe that has no writer would never be opened.
    Descriptor file(
        ::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)); // NOLINT(*-vararg)
    const int number = file.Number();
    return {std::move(file), number};
}

InputSource InputSource::StandardInput() {
    return {Descriptor(), STDIN_FILENO};
}

InputSource::InputSource(Descriptor owned, int number)
    : m_owned(std::move(owned)), m_number(number) {
    struct stat state {};
    m_awaitsWriter = m_owned.IsOpen() && ::fstat(m_number, &state) == 0 && S_ISFIFO(state.st_mode);
}

bool InputSource::LacksWriter() const {
    return m_awaitsWriter && m_waitedMs >= kWaitForWriterMs;
}

long InputSource::Read(char *buffer, std::size_t size) {
    for (;;) {
        const long count = ::read(m_number, buffer, size);
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

/// RETURNS the events of poll.
int InputSource::Poll(int milliseconds) const {
    pollfd wanted{m_number, POLLIN, 0};
    return ::poll(&wanted, 1, milliseconds) > 0 ? wanted.revents : 0;
}

/// Until a named pipe has a writer, a read finds its end. RETURNS false if a writer has come and
/// gone, or none came in time.
bool InputSource::MayGetWriter() {
    if (!m_awaitsWriter || m_waitedMs >= kWaitForWriterMs) {
        return false;
    }
    m_waitedMs += kWaitStepMs;
    return (Poll(kWaitStepMs) & POLLHUP) == 0;
}

} // namespace ispctl
