#ifndef ISPCTL_EXIT_STATUS_H
#define ISPCTL_EXIT_STATUS_H

namespace ispctl {

/// Exit statuses of ispctl.
enum ExitStatus : int {
    kExitSuccess = 0,
    kExitFailedRun = 1,     ///< the library was called and did not return 0, or output is missing
    kExitNotRun = 2,        ///< usage error, or a file or library could not be opened
    kExitInterrupted = 130, ///< stopped by the second Ctrl-C
};

} // namespace ispctl

#endif
