#include "ConsoleStreams.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ispctl {

void EnsureStandardDescriptors() {
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

void WriteAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

ConsoleStreams::ConsoleStreams()
    : m_output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)),
      m_error(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {}

ConsoleStreams::~ConsoleStreams() {
    ::close(m_output);
    ::close(m_error);
}

bool ConsoleStreams::IsTerminal(Stream stream) const {
    const char *kind = std::getenv("TERM");
    const bool canErase = kind == nullptr || std::string_view(kind) != "dumb";
    return canErase && ::isatty(Descriptor(stream)) == 1;
}

bool ConsoleStreams::AreOne() const {
    struct stat output {};
    struct stat error {};
    return ::fstat(m_output, &output) == 0 && ::fstat(m_error, &error) == 0 &&
           output.st_dev == error.st_dev && output.st_ino == error.st_ino;
}

} // namespace ispctl
