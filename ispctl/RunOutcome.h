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
    Unheard,     ///< unknown: its reports could not be read to the end
};

/// The result of a run.
struct RunOutcome {
    RunEnd end = RunEnd::Returned;
    int number = 0;             ///< the exit status or the signal
    std::optional<int> code;    ///< the library's result code; nothing: it did not return
    bool pluginCalled = true;   ///< false only if certainly no function of a plug-in was called
    std::optional<int> percent; ///< last reported progress

    /// An exit status of 0 alone is not a success: a plug-in may have called exit(0).
    bool IsSuccess() const {
        return end == RunEnd::Returned && code == 0;
    }
};

} // namespace ispctl

#endif
