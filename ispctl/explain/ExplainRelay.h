#ifndef ISPCTL_EXPLAIN_EXPLAIN_RELAY_H
#define ISPCTL_EXPLAIN_EXPLAIN_RELAY_H

#include <string_view>

#include "Session.h"
#include "explain/ExplainOptions.h"

namespace ispctl {

/// Lets the same command run in the library's process and shows what it sends.
/// RETURNS its status, or kExitNotRun if the library ended that process.
ExitStatus RelayExplanation(const ExplainOptions &options, Session &session);

/// Writes text of ours to standard output, without its colours unless that is a terminal and
/// NO_COLOR is not set.
void ShowExplanation(std::string_view text, ConsoleStreams &streams);

/// How wide the terminal is at which the explanation is shown, in either process: the library's has
/// a pipe instead of it. UNITS: columns.
std::size_t WidthOfExplanation(const Session &session);

} // namespace ispctl

#endif
