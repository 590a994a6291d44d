#ifndef ISPCTL_EDID_ADD_EDID_H
#define ISPCTL_EDID_ADD_EDID_H

#include "edid/EdidCommand.h"

namespace CLI {
class App;
}

namespace ispctl {

/// Adds the subcommand `edid`. When parsed, it runs and stores its exit status in status.
void AddEdid(CLI::App &app, EdidOptions &options, Session &session, ExitStatus &status);

} // namespace ispctl

#endif
