#ifndef ISPCTL_SCRIPT_SCRIPT_RELAY_H
#define ISPCTL_SCRIPT_SCRIPT_RELAY_H

#include "Session.h"

namespace ispctl {

/// Lets the same command run in a process of its own, because it opens libraries of others, and
/// shows what that process writes. RETURNS its status, or kExitFailedRun where it was ended.
ExitStatus RelayScript(Session &session);

} // namespace ispctl

#endif
