#ifndef ISPCTL_CHECK_ADD_CHECK_PLUGIN_H
#define ISPCTL_CHECK_ADD_CHECK_PLUGIN_H

#include "check/CheckPluginCommand.h"

namespace CLI {
class App;
}

namespace ispctl::check {

/// Adds the subcommand `check-plugin`. When it is parsed it runs and leaves its exit status in
/// status.
void AddCheckPlugin(CLI::App &app, CheckOptions &options, Session &session, ExitStatus &status);

} // namespace ispctl::check

#endif
