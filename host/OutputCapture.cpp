#include "OutputCapture.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace ispctl {
namespace {

constexpr std::array<int, 4> kCrashSignals{SIGABRT, SIGBUS, SIGFPE, SIGSEGV};

// What the crash handler may touch: plain integers, set before it is installed.
volatile std::sig_atomic_t g_crashSource[2] = {-1, -1};
volatile std::sig_atomic_t g_crashTarget = -1;
volatile std::sig_atomic_t g_crashWake = -1;
std::atomic<bool> g_acknowledged{false};
static_assert(std::atomic<bool>::is_always_lock_free);

ssize_t ReadSome(int descriptor, char *buffer, std::size_t size) {
    ssize_t length = 0;
    do {
        length = ::read(descriptor, buffer, size);
    } while (length < 0 && errno == EINTR);
    return length;
}

// The thread that shows text may itself wait for something that the crash has left locked.
void WaitForAcknowledgement() {
    constexpr timespec kTenMilliseconds{0, 10'000'000};
    for (int i = 0; i < 100 && !g_acknowledged; ++i) {
        ::nanosleep(&kTenMilliseconds, nullptr);
    }
}

// The last words of a plug-in matter most when it crashes.
extern "C" void ShowCapturedTextAndDie(int signal) {
    char buffer[512];
    WriteAll(g_crashWake, "x");
    WaitForAcknowledgement();
    for (const volatile std::sig_atomic_t &source : g_crashSource) {
        ssize_t length = 0;
        while (source >= 0 && (length = ReadSome(source, buffer, sizeof buffer)) > 0) {
            WriteAll(g_crashTarget, {buffer, static_cast<std::size_t>(length)});
        }
    }
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void InstallCrashHandlers() {
    struct sigaction handler {};
    handler.sa_handler = ShowCapturedTextAndDie;
    for (const int signal : kCrashSignals) {
        struct sigaction former {};
        if (::sigaction(signal, nullptr, &former) == 0 && former.sa_handler == SIG_DFL) {
            ::sigaction(signal, &handler, nullptr);
        }
    }
}

void RemoveCrashHandlers() {
    for (const int signal : kCrashSignals) {
        struct sigaction current {};
        if (::sigaction(signal, nullptr, &current) == 0 &&
            current.sa_handler == ShowCapturedTextAndDie) {
            ::signal(signal, SIG_DFL);
        }
    }
}

// Both ends are ours alone; only the reader must never wait.
bool OpenPipe(std::array<int, 2> &ends) {
    if (::pipe(ends.data()) != 0) {
        ends = {-1, -1};
        return false;
    }
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return true;
}

} // namespace

OutputCapture::OutputCapture(const ConsoleStreams &streams, Ordering ordering)
    : m_streams(streams) {
    std::array<int, 2> output{-1, -1};
    std::array<int, 2> error{-1, -1};
    const bool two = ordering == Ordering::TwoPipes;
    m_active = OpenPipe(m_wake) && OpenPipe(output) && (!two || OpenPipe(error));
    m_readEnds = {output[0], error[0]};
    m_writeEnds = {output[1], error[1]};
    if (m_active) {
        std::fflush(stdout);
        std::fflush(stderr);
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(two ? error[1] : output[1], STDERR_FILENO);
        m_taken = true;
        g_crashSource[0] = m_readEnds[0];
        g_crashSource[1] = m_readEnds[1];
        g_crashTarget = m_streams.Descriptor(Stream::Error);
        g_crashWake = m_wake[1];
        g_acknowledged = false;
        InstallCrashHandlers();
    }
}

OutputCapture::~OutputCapture() {
    Restore();
    CloseAll();
}

void OutputCapture::Restore() {
    if (m_taken) {
        std::fflush(stdout);
        std::fflush(stderr);
        ::dup2(m_streams.Descriptor(Stream::Output), STDOUT_FILENO);
        ::dup2(m_streams.Descriptor(Stream::Error), STDERR_FILENO);
        RemoveCrashHandlers();
        m_taken = false;
    }
}

void OutputCapture::CloseAll() {
    for (std::array<int, 2> *ends : {&m_readEnds, &m_writeEnds, &m_wake}) {
        for (int &descriptor : *ends) {
            if (descriptor >= 0) {
                ::close(descriptor);
                descriptor = -1;
            }
        }
    }
}

void OutputCapture::TakeAvailable(const TakeText &take) {
    std::array<char, 16384> buffer;
    for (std::size_t i = 0; i < m_readEnds.size(); ++i) {
        ssize_t length = 0;
        while (m_readEnds[i] >= 0 &&
               (length = ReadSome(m_readEnds[i], buffer.data(), buffer.size())) > 0) {
            take(i == 0 ? Stream::Output : Stream::Error,
                 {buffer.data(), static_cast<std::size_t>(length)});
        }
    }
}

OutputCapture::Event OutputCapture::WaitForText(int milliseconds) {
    std::array<pollfd, 3> descriptors{};
    descriptors[0] = {m_wake[0], POLLIN, 0};
    descriptors[1] = {m_readEnds[0], POLLIN, 0};
    descriptors[2] = {m_readEnds[1], POLLIN, 0};
    int count = 0;
    do {
        count = ::poll(descriptors.data(), descriptors.size(), milliseconds);
    } while (count < 0 && errno == EINTR);
    if (count == 0) {
        return Event::Pause;
    }
    return descriptors[0].revents != 0 ? Event::Stop : Event::Text;
}

void OutputCapture::StopWaiting() {
    WriteAll(m_wake[1], "x");
}

void OutputCapture::AcknowledgeStop() {
    g_acknowledged = true;
}

} // namespace ispctl
