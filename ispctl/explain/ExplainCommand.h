#ifndef ISPCTL_EXPLAIN_EXPLAIN_COMMAND_H
#define ISPCTL_EXPLAIN_EXPLAIN_COMMAND_H

#include "Session.h"
#include "explain/ExplainOptions.h"

namespace ispctl {

/// Shows what a command line does, or what a record of a file holds. A line is explained in the
/// library's process, and this process shows what that one sends.
/// RETURNS the status of StatusOf; kExitNotRun for a usage error or a library that cannot be used;
/// kExitFileError if a file of the options cannot be read or written.
ExitStatus ExplainCommand(const ExplainOptions &options, Session &session);

} // namespace ispctl

#endif
