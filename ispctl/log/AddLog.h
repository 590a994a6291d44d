#ifndef ISPCTL_LOG_ADD_LOG_H
#define ISPCTL_LOG_ADD_LOG_H

#include "log/SummaryCommand.h"

namespace CLI {
class App;
}

namespace ispctl {

/// Adds `ispctl log`, which stores its exit status in status.
void AddLog(CLI::App &app, SummaryOptions &options, Session &session, ExitStatus &status);

} // namespace ispctl

#endif
