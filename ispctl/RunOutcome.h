#ifndef ISPCTL_RUN_OUTCOME_H
#define ISPCTL_RUN_OUTCOME_H

#include <optional>

namespace ispctl {

/// How the library's process ended.
enum class RunEnd {
    Returned,    ///< by itself, after the library had returned
    Exit,        ///< by exit or _exit in a plug-in, whatever the status
    Signal,      ///< by a signal
    Interrupted, ///< by the second Ctrl-C
    Unheard,     ///< somehow: what it tells could not be read to its end
};

/// Everything that is known of a run that is over.
struct RunOutcome {
    RunEnd end = RunEnd::Returned;
    int number = 0;             ///< the exit status or the signal
    std::optional<int> code;    ///< what the library returned
    bool pluginCalled = true;   ///< false: it is certain that no function of a plug-in was called
    std::optional<int> percent; ///< the last progress

    /// Only a result of the library can be a success.
    bool IsSuccess() const {
        return end == RunEnd::Returned && code == 0;
    }
};

} // namespace ispctl

#endif
