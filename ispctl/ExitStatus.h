#ifndef ISPCTL_EXIT_STATUS_H
#define ISPCTL_EXIT_STATUS_H

#include <string>

namespace ispctl {

/// Exit statuses of every command, one row per status: X(NAME, VALUE, MEANING). The help texts and
/// docs/ispctl.md show this table.
/* clang-format off */
#define ISPCTL_EXIT_STATUSES(X) \
    X(kExitSuccess, 0, "success") \
    X(kExitFailed, 1, "failed, or the input is wrong") \
    X(kExitUsage, 2, "usage error of ispctl itself, or the library could not be opened") \
    X(kExitFindings, 3, "findings that the library would accept (explain, doctor, check-plugin)") \
    X(kExitRefused, 4, "refused: by a finding about the command line, or by the library") \
    X(kExitNoPlugin, 5, "no usable plug-in") \
    X(kExitBadSignature, 6, "the firmware signature is invalid") \
    X(kExitPluginEnded, 7, "a plug-in or communication library ended the process") \
    X(kExitFileError, 8, "a file or device of ispctl's own cannot be read or written") \
    X(kExitInterrupted, 130, "stopped by a signal")
/* clang-format on */

enum ExitStatus : int {
#define ISPCTL_EXIT_STATUS(NAME, VALUE, MEANING) NAME = VALUE,
    ISPCTL_EXIT_STATUSES(ISPCTL_EXIT_STATUS)
#undef ISPCTL_EXIT_STATUS
};

/// The table for a help text, within 80 columns.
inline std::string ExitStatusHelp() {
    std::string help = "\nExit status:\n";
#define ISPCTL_EXIT_STATUS(NAME, VALUE, MEANING)                                                   \
    help += std::string((VALUE) < 10 ? "    " : "  ") + #VALUE "  " MEANING "\n";
    ISPCTL_EXIT_STATUSES(ISPCTL_EXIT_STATUS)
#undef ISPCTL_EXIT_STATUS
    help.pop_back();
    return help;
}

} // namespace ispctl

#endif
