#ifndef ISPCTL_RUN_COMMAND_H
#define ISPCTL_RUN_COMMAND_H

#include <string>
#include <string_view>
#include <vector>

#include "ConsoleStreams.h"
#include "ExitStatus.h"
#include "line/Finding.h"
#include "station/StationOptions.h"

namespace ispctl {

/// The options of `ispctl run`.
struct RunOptions {
    std::string library;              ///< empty: the installed one
    bool virtualScaler = false;       ///< use the virtual scaler's library
    bool json = false;                ///< standard output is JSON only
    std::string log;                  ///< file to append to; empty: none
    std::vector<std::string> allowed; ///< names of findings that do not stop the run
    bool verbatim = false;            ///< pass the line unchecked, and show text unchanged
    bool dryRun = false;              ///< explain the line instead of running it
    StationOptions station;
    std::vector<std::string> arguments; ///< for the library, unchanged
};

/// Passes options.arguments to the library as one command line, in a separate process, and shows
/// the run.
/// \param arguments  all arguments of this program, from which that process parses the same options
ExitStatus RunCommand(const RunOptions &options, const std::vector<std::string> &arguments,
                      ConsoleStreams &streams);

/// Says why there is no result of the library, with `json` also as the result event. RETURNS the
/// status.
/// \param stage  as in JsonEvents::WriteNotCalled
ExitStatus ReportNotCalled(bool json, ExitStatus status, std::string_view stage,
                           const std::string &reason, const std::vector<Finding> &findings,
                           ConsoleStreams &streams, std::string_view run = {});

} // namespace ispctl

#endif
