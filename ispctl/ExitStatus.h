#ifndef ISPCTL_EXIT_STATUS_H
#define ISPCTL_EXIT_STATUS_H

namespace ispctl {

/// Exit statuses of the console.
enum ExitStatus : int {
    kExitSuccess = 0,
    kExitFailedRun = 1,     ///< the library was called and did not return 0, or output is missing
    kExitNotRun = 2,        ///< the library was not called
    kExitInterrupted = 130, ///< stopped by the second Ctrl-C
};

} // namespace ispctl

#endif
