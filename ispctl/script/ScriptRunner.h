#ifndef ISPCTL_SCRIPT_SCRIPT_RUNNER_H
#define ISPCTL_SCRIPT_SCRIPT_RUNNER_H

#include <string>
#include <vector>

#include "script/ScriptCommand.h"
#include "script/ScriptText.h"

namespace ispctl {

/// Opens library and communication library, runs the steps in their order up to the first that
/// fails, and shows what they read. REQUIRES: CheckScript found no problem in them.
ExitStatus RunSteps(const ScriptOptions &options, const std::vector<ScriptStep> &steps,
                    Session &session);

/// RETURNS the message for a result of the runner. The codes 1 to 3 and 6 are ambiguous, and the
/// message says so. \param own  CommSession::WordsFor the code
std::string DescribeScriptResult(int code, const std::string &own = {});

} // namespace ispctl

#endif
