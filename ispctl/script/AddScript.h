#ifndef ISPCTL_SCRIPT_ADD_SCRIPT_H
#define ISPCTL_SCRIPT_ADD_SCRIPT_H

#include "script/ScriptCommand.h"

namespace CLI {
class App;
}

namespace ispctl {

/// Adds the subcommand `script` with its subcommands. When one is parsed, it runs and stores its
/// exit status in status.
void AddScript(CLI::App &app, ScriptOptions &options, Session &session, ExitStatus &status);

} // namespace ispctl

#endif
