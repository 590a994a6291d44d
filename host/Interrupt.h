#ifndef ISPCTL_INTERRUPT_H
#define ISPCTL_INTERRUPT_H

#include <atomic>
#include <csignal>
#include <thread>

#include "ConsoleStreams.h"

namespace ispctl {

/// While it lives, the first Ctrl-C only warns and the second ends the process at once with 130.
/// A reader that goes away (SIGPIPE) and a terminal that closes (SIGHUP) do not end the process.
///
/// A thread of its own waits for Ctrl-C and every other thread blocks it, so that no delay of a
/// plug-in is cut short. Create it before any other thread.
class InterruptGuard {
  public:
    explicit InterruptGuard(const ConsoleStreams &streams);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard &) = delete;
    InterruptGuard &operator=(const InterruptGuard &) = delete;

  private:
    void Wait();

    const ConsoleStreams &m_streams;
    sigset_t m_formerMask{};
    struct sigaction m_formerInterrupt {};
    struct sigaction m_formerPipe {};
    struct sigaction m_formerHangUp {};
    std::atomic<bool> m_over{false};
    std::thread m_waiter;
};

} // namespace ispctl

#endif
