#ifndef ISPCTL_RUN_OUTCOME_H
#define ISPCTL_RUN_OUTCOME_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ExitStatus.h"
#include "PluginCodes.h"
#include "line/Finding.h"

namespace ispctl {

/// How the library's process ended.
enum class RunEnd {
    Returned,    ///< by itself, after the library had returned
    Exit,        ///< by exit or _exit in a plug-in, whatever the status
    Signal,      ///< by a signal
    Interrupted, ///< by the second Ctrl-C, or by any signal during a backup
    Unheard,     ///< unknown: its reports could not be read to the end
    NotCalled,   ///< the library was not called
};

/// The result of a run.
struct RunOutcome {
    RunEnd end = RunEnd::Returned;
    int number = 0;               ///< the exit status or the signal
    std::optional<int> code;      ///< the library's result code; nothing: it did not return
    bool fromLibrary = false;     ///< the library itself formed the code, not a plug-in
    bool pluginCalled = true;     ///< false only if certainly no function of a plug-in was called
    bool deviceUntouched = false; ///< certainly no function that accesses the device was called
    std::optional<int> percent;   ///< last reported progress
    std::string detail; ///< why a plug-in could not be used and what to do, one sentence per line
    std::optional<PluginCode> pluginWords; ///< what the plug-in's maker says of the code
    std::vector<unsigned> banks;           ///< that the call programs, in their order
    std::vector<Finding> findings;         ///< about the command line
    std::string run;                       ///< id; empty: the run is recorded nowhere
    bool inBackup = false;            ///< it ended while the device was read, before programming
    std::string problem;              ///< why ispctl ended the run after a success of the library
    std::vector<std::string> backups; ///< JSON objects

    /// An exit status of 0 alone is not a success: a plug-in may have called exit(0).
    bool IsSuccess() const {
        return end == RunEnd::Returned && code == 0 && problem.empty();
    }
};

/// The exit status of ispctl for an outcome that was reported completely.
/// REQUIRES: the library was called.
ExitStatus StatusOfOutcome(const RunOutcome &outcome);

/// "library", "plug-in" or "ispctl": who ended the run with what is reported.
std::string_view SourceOf(const RunOutcome &outcome);

/// How far the run was: "validate", "load", "verify", "backup", "call" or "done".
std::string_view StageOf(const RunOutcome &outcome);

} // namespace ispctl

#endif
