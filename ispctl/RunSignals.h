#ifndef ISPCTL_RUN_SIGNALS_H
#define ISPCTL_RUN_SIGNALS_H

#include <csignal>
#include <sys/types.h>
#include <vector>

#include "Pipe.h"

namespace ispctl {

/// The signals that the console takes while the library's process runs, and leaves to nobody else.
///
/// They never end the console itself: SIGINT, SIGTERM, SIGHUP and SIGQUIT are noted, and only the
/// second SIGINT ends the other process. One at a time in a process.
class RunSignals {
  public:
    enum class Stop {
        AtSecondInterrupt, ///< stopping can leave a device without firmware
        AtFirst,           ///< any of these signals stops
    };

    /// Throws std::system_error where the pipe cannot be made.
    explicit RunSignals(Stop stop);
    ~RunSignals();
    RunSignals(const RunSignals &) = delete;
    RunSignals &operator=(const RunSignals &) = delete;

    /// The signals that a person or a supervisor stops programs with.
    static sigset_t StopSignals();
    /// Names the process to be ended. \param process  0: there is none (any more)
    static void Watch(pid_t process);
    /// RETURNS whether the signals have ended the other process.
    static bool HasStopped();

    /// Becomes readable when a signal, or the end of a process, has come.
    int WakeDescriptor() const {
        return m_wake.readEnd.Number();
    }
    /// RETURNS the stop signals that came since the last call.
    std::vector<int> Take();

  private:
    Pipe m_wake;
    std::vector<struct sigaction> m_previous;
};

} // namespace ispctl

#endif
