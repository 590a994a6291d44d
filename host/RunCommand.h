#ifndef ISPCTL_RUN_COMMAND_H
#define ISPCTL_RUN_COMMAND_H

#include <string>
#include <vector>

namespace ispctl {

/// Exit statuses of the console.
enum ExitStatus : int {
    kExitSuccess = 0,
    kExitFailedRun = 1, ///< the library was called and did not return 0
    kExitWrongUse = 2,  ///< the library was not called
};

/// What `ispctl run` was asked for.
struct RunOptions {
    std::string library;                ///< empty: the installed one
    bool virtualScaler = false;         ///< take the virtual scaler's library
    bool json = false;                  ///< standard output carries JSON only
    std::string log;                    ///< file to append to; empty: none
    std::vector<std::string> arguments; ///< for the library, as typed
};

/// Hands the arguments to the library as one command line and shows the run.
ExitStatus RunCommand(const RunOptions &options);

} // namespace ispctl

#endif
