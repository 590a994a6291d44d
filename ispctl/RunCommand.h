#ifndef ISPCTL_RUN_COMMAND_H
#define ISPCTL_RUN_COMMAND_H

#include <string>
#include <vector>

#include "ConsoleStreams.h"
#include "ExitStatus.h"

namespace ispctl {

/// What `ispctl run` was asked for.
struct RunOptions {
    std::string library;                ///< empty: the installed one
    bool virtualScaler = false;         ///< take the virtual scaler's library
    bool json = false;                  ///< standard output carries JSON only
    std::string log;                    ///< file to append to; empty: none
    std::vector<std::string> arguments; ///< for the library, as typed
};

/// Hands the arguments to the library as one command line, in a process of its own, and shows the
/// run. \param arguments  of this program, for that process
ExitStatus RunCommand(const RunOptions &options, const std::vector<std::string> &arguments,
                      ConsoleStreams &streams);

} // namespace ispctl

#endif
