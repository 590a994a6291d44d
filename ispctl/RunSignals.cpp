#include "RunSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <unistd.h>

#include "ExitStatus.h"

namespace ispctl {
namespace {

constexpr std::array<int, 4> kStopSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr std::array<int, 6> kHandled{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGCHLD, SIGALRM};

// Time to write the final output after the library's process was killed. UNITS: seconds.
constexpr unsigned kFinalOutputSeconds = 2;

// The state of the signal handler: lock-free atomics only, because it runs asynchronously.
std::atomic<int> g_wake{-1};
std::atomic<int> g_process{0};
std::atomic<int> g_interrupts{0};
std::atomic<bool> g_stopAtFirst{false};
std::atomic<bool> g_stopped{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

bool EndsTheRun(int signal) {
    return signal != SIGCHLD && (g_stopAtFirst || (signal == SIGINT && ++g_interrupts > 1));
}

extern "C" void OnSignal(int signal) {
    const int error = errno;
    if (signal == SIGALRM) {
        // The reader of the output does not accept the final output.
        ::_exit(kExitInterrupted);
    }
    if (EndsTheRun(signal)) {
        g_stopped = true;
        if (g_process != 0) {
            ::kill(g_process, SIGKILL);
        }
        ::alarm(kFinalOutputSeconds);
    }
    const auto byte = static_cast<char>(signal);
    [[maybe_unused]] const auto written = ::write(g_wake, &byte, 1); // a full pipe wakes, too
    errno = error;
}

} // namespace

sigset_t RunSignals::StopSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : kStopSignals) {
        sigaddset(&set, signal);
    }
    return set;
}

void RunSignals::Watch(pid_t process) {
    g_process = process;
    if (process != 0 && g_stopped) {
        ::kill(process, SIGKILL);
    }
}

bool RunSignals::HasStopped() {
    return g_stopped;
}

RunSignals::RunSignals(Stop stop) : m_wake(Pipe::Make()) {
    SetNonBlocking(m_wake.readEnd);
    SetNonBlocking(m_wake.writeEnd);
    g_wake = m_wake.writeEnd.Number();
    g_stopAtFirst = stop == Stop::AtFirst;
    g_stopped = false;
    g_interrupts = 0;
    struct sigaction wanted {};
    wanted.sa_handler = OnSignal;
    wanted.sa_flags = SA_RESTART | SA_NOCLDSTOP;
    for (const int signal : kHandled) {
        m_previous.emplace_back();
        ::sigaction(signal, &wanted, &m_previous.back());
    }
}

RunSignals::~RunSignals() {
    ::alarm(0);
    for (std::size_t i = 0; i < kHandled.size(); ++i) {
        ::sigaction(kHandled[i], &m_previous[i], nullptr);
    }
}

std::vector<int> RunSignals::Drain() {
    std::vector<int> signals;
    std::array<char, 64> buffer{};
    long length = 0;
    while ((length = ReadSome(WakeDescriptor(), buffer.data(), buffer.size())) > 0) {
        for (long i = 0; i < length; ++i) {
            const int signal = static_cast<unsigned char>(buffer[static_cast<std::size_t>(i)]);
            if (signal != SIGCHLD) {
                signals.push_back(signal);
            }
        }
    }
    return signals;
}

} // namespace ispctl
