#ifndef ISPCTL_RUN_COMMAND_H
#define ISPCTL_RUN_COMMAND_H

#include <string>
#include <vector>

#include "ConsoleStreams.h"
#include "ExitStatus.h"

namespace ispctl {

/// The options of `ispctl run`.
struct RunOptions {
    std::string library;                ///< empty: the installed one
    bool virtualScaler = false;         ///< use the virtual scaler's library
    bool json = false;                  ///< standard output is JSON only
    std::string log;                    ///< file to append to; empty: none
    std::vector<std::string> arguments; ///< for the library, unchanged
};

/// Passes options.arguments to the library as one command line, in a separate process, and shows
/// the run.
/// \param arguments  all arguments of this program, from which that process parses the same options
ExitStatus RunCommand(const RunOptions &options, const std::vector<std::string> &arguments,
                      ConsoleStreams &streams);

} // namespace ispctl

#endif
