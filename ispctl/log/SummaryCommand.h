#ifndef ISPCTL_LOG_SUMMARY_COMMAND_H
#define ISPCTL_LOG_SUMMARY_COMMAND_H

#include <string>
#include <vector>

#include "Session.h"

namespace ispctl {

/// What `ispctl log summary` was asked for.
struct SummaryOptions {
    std::vector<std::string> files;
    bool json = false; ///< standard output is one JSON document
};

/// RETURNS kExitFailed if a line is broken, kExitFileError if a file cannot be read. Failed runs
/// are what is reported, not a failure of the report.
ExitStatus SummaryCommand(const SummaryOptions &options, Session &session);

} // namespace ispctl

#endif
