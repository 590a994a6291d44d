#ifndef ISPCTL_RUN_SIGNALS_H
#define ISPCTL_RUN_SIGNALS_H

#include <csignal>
#include <sys/types.h>
#include <vector>

#include "Pipe.h"

namespace ispctl {

/// Handles the stop signals while the library's process runs, which itself blocks them.
///
/// They never end ispctl itself: SIGINT, SIGTERM, SIGHUP and SIGQUIT are recorded, and Stop says
/// which of them ends the library's process. One object at a time.
class RunSignals {
  public:
    enum class Stop {
        AtSecondInterrupt, ///< for programming: stopping can leave a device without firmware
        AtFirst,           ///< any of these signals ends the library's process
    };

    /// Throws std::system_error if the pipe cannot be created.
    explicit RunSignals(Stop stop);
    ~RunSignals();
    RunSignals(const RunSignals &) = delete;
    RunSignals &operator=(const RunSignals &) = delete;

    /// SIGINT, SIGTERM, SIGHUP and SIGQUIT: the signals by which users and supervisors stop
    /// programs.
    static sigset_t StopSignals();
    /// Sets the process to end, because the signal handler cannot look it up. \param process  0:
    /// none
    static void Watch(pid_t process);
    /// RETURNS whether a signal has ended the library's process.
    static bool HasStopped();

    /// Readable after a signal or the end of a process, so that poll can wait for both.
    int WakeDescriptor() const {
        return m_wake.readEnd.Number();
    }
    /// RETURNS the stop signals received since the last call.
    std::vector<int> Drain();

  private:
    Pipe m_wake;
    std::vector<struct sigaction> m_previous;
};

} // namespace ispctl

#endif
