#ifndef ISPCTL_DOCTOR_PROBE_H
#define ISPCTL_DOCTOR_PROBE_H

#include <chrono>
#include <string>
#include <vector>

#include "LibraryProcess.h"

namespace ispctl::doctor {

/// What a process that opens a library or plug-in reports: a word, and strings that belong to it.
/// No string contains a NUL.
using Notice = std::vector<std::string>;

/// In that process: reports to the one that started it.
void Send(ParentLink &link, const Notice &notice);

/// How such a process went.
struct ProbeOutcome {
    std::vector<Notice> notices;
    bool interrupted = false; ///< the user stopped it
    std::string end; ///< if it did not reach its end: how it ended, "ends the process (…)"
    bool timedOut = false;
    int status = 0;      ///< from waitpid
    std::string printed; ///< the beginning of what it wrote to its standard streams

    /// The first notice that begins with this word, or null.
    const Notice *Find(const std::string &word) const;
};

/// The command of the processes that doctor starts; it is not for users.
inline constexpr const char *kProbeCommand = "doctor-probe";

/// The word with which a process reports that nothing is left to do.
inline constexpr const char *kProbeEnd = "end";

/// How long such a process may take.
struct ProbeLimit {
    std::chrono::seconds time{5};
    std::string restart; ///< a notice that begins with this word starts the time again
};

/// Runs `ispctl ARGUMENTS` as the process that opens libraries. A process that exceeds the limit is
/// ended. Throws std::system_error if it cannot be started.
ProbeOutcome RunProbe(const std::vector<std::string> &arguments, const ProbeLimit &limit = {});

} // namespace ispctl::doctor

#endif
