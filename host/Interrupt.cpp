#include "Interrupt.h"

#include <pthread.h>
#include <unistd.h>

namespace ispctl {
namespace {

constexpr int kEndedByInterrupt = 130;

constexpr std::string_view kWarning =
    "\nispctl: stopping now can leave the device without firmware; "
    "press Ctrl-C again to stop at once\n";

sigset_t OnlyInterrupt() {
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, SIGINT);
    return set;
}

void SetAction(int signal, void (*action)(int), struct sigaction &former) {
    struct sigaction wanted {};
    wanted.sa_handler = action;
    ::sigaction(signal, &wanted, &former);
}

} // namespace

InterruptGuard::InterruptGuard(const ConsoleStreams &streams) : m_streams(streams) {
    const sigset_t interrupt = OnlyInterrupt();
    ::pthread_sigmask(SIG_BLOCK, &interrupt, &m_formerMask);
    // An ignored signal, as in a background job of a script, could not be waited for.
    SetAction(SIGINT, SIG_DFL, m_formerInterrupt);
    SetAction(SIGPIPE, SIG_IGN, m_formerPipe);
    SetAction(SIGHUP, SIG_IGN, m_formerHangUp);
    m_waiter = std::thread([this] { Wait(); });
}

InterruptGuard::~InterruptGuard() {
    m_over = true;
    ::pthread_kill(m_waiter.native_handle(), SIGINT);
    m_waiter.join();
    ::sigaction(SIGHUP, &m_formerHangUp, nullptr);
    ::sigaction(SIGPIPE, &m_formerPipe, nullptr);
    ::sigaction(SIGINT, &m_formerInterrupt, nullptr);
    ::pthread_sigmask(SIG_SETMASK, &m_formerMask, nullptr);
}

void InterruptGuard::Wait() {
    const sigset_t interrupt = OnlyInterrupt();
    for (int count = 1;; ++count) {
        int signal = 0;
        ::sigwait(&interrupt, &signal);
        if (m_over) {
            return;
        }
        if (count > 1) {
            ::_exit(kEndedByInterrupt);
        }
        m_streams.Write(Stream::Error, kWarning);
    }
}

} // namespace ispctl
