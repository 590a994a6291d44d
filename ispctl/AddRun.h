#ifndef ISPCTL_ADD_RUN_H
#define ISPCTL_ADD_RUN_H

#include "RunCommand.h"

namespace CLI {
class App;
}

namespace ispctl {

/// Adds `ispctl run`. It has no callback, because what it does depends on the process: see main.
CLI::App *AddRun(CLI::App &app, RunOptions &options);

} // namespace ispctl

#endif
