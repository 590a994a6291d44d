#include "ConsoleStreams.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Environment.h"
#include "WrapText.h"

namespace ispctl {
namespace {

constexpr std::array<const char *, 2> kNames{"standard output", "standard error"};

std::size_t IndexOf(Stream stream) {
    return stream == Stream::Output ? 0 : 1;
}

int DescriptorOf(Stream stream) {
    return stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

bool IsOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) >= 0;
}

} // namespace

bool EnsureStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // Writing to a closed standard output has to fail, or a script takes a run without a result
        // for a success. So has reading from a closed standard input.
        const int mode = descriptor == STDOUT_FILENO  ? O_RDONLY
                         : descriptor == STDIN_FILENO ? O_WRONLY
                                                      : O_RDWR;
        // open returns the lowest free number, which is the missing one.
        if (!IsOpen(descriptor) && ::open("/dev/null", mode) != descriptor) {
            return false;
        }
    }
    return true;
}

int WriteAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0) {
            return EIO;
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // Another process that shares the file description has made it non-blocking.
            pollfd waiting{descriptor, POLLOUT, 0};
            ::poll(&waiting, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

ConsoleStreams::ConsoleStreams()
    : m_charset(IsUtf8Environment() ? Charset::Utf8 : Charset::Ascii) {}

void ConsoleStreams::Write(Stream stream, std::string_view bytes) noexcept {
    if (stream == Stream::Output && m_receiver) {
        m_receiver(bytes);
        return;
    }
    int &error = m_errors[IndexOf(stream)];
    if (error == 0) {
        error = WriteAll(DescriptorOf(stream), bytes);
    }
}

void ConsoleStreams::Print(Stream stream, std::string_view text) {
    Write(stream, Visible(text, Layout::Lines, m_charset));
}

void ConsoleStreams::PrintMessage(std::string_view text) {
    const std::string line = Visible(text, Layout::OneLine, m_charset);
    if (!IsTerminal(Stream::Error)) {
        Write(Stream::Error, "ispctl: " + line + "\n");
        return;
    }
    const TextLayout layout{static_cast<std::size_t>(Width(Stream::Error))};
    Write(Stream::Error, WrapText(line, layout, "ispctl: "));
}

std::string ConsoleStreams::Problem() const {
    for (std::size_t i = 0; i < m_errors.size(); ++i) {
        if (m_errors[i] != 0) {
            return fmt::format("{} could not be written completely: {}", kNames[i],
                               std::strerror(m_errors[i]));
        }
    }
    return "";
}

ExitStatus ConsoleStreams::Finish(ExitStatus status, bool quiet) {
    if (m_errors[0] == 0 && m_errors[1] != 0 && !quiet) {
        Write(Stream::Output, fmt::format("ispctl: {}\n", Problem()));
    }
    // Some file systems report a failed write only when the file is closed.
    if (::close(STDOUT_FILENO) != 0 && m_errors[0] == 0) {
        m_errors[0] = errno;
    }
    if (m_errors[0] != 0) {
        Write(Stream::Error, fmt::format("ispctl: {}\n", Problem()));
    }
    return IsComplete() || status != kExitSuccess ? status : kExitFileError;
}

bool ConsoleStreams::IsTerminal(Stream stream) {
    const char *kind = std::getenv("TERM");
    const bool canErase = kind == nullptr || std::string_view(kind) != "dumb";
    return canErase && ::isatty(DescriptorOf(stream)) == 1;
}

bool ConsoleStreams::HasColours(Stream stream) {
    const char *unwanted = std::getenv("NO_COLOR");
    return IsTerminal(stream) && (unwanted == nullptr || *unwanted == '\0');
}

int ConsoleStreams::Width(Stream stream) {
    constexpr int kDefault = 80;
    winsize size{};
    const bool known = ::ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kDefault;
}

bool ConsoleStreams::ShareOneTarget() {
    struct stat output {};
    struct stat error {};
    return ::fstat(STDOUT_FILENO, &output) == 0 && ::fstat(STDERR_FILENO, &error) == 0 &&
           output.st_dev == error.st_dev && output.st_ino == error.st_ino;
}

} // namespace ispctl
