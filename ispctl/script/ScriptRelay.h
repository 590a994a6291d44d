#ifndef ISPCTL_SCRIPT_SCRIPT_RELAY_H
#define ISPCTL_SCRIPT_SCRIPT_RELAY_H

#include "Session.h"

namespace ispctl {

/// Runs the same command in a separate process, because it opens third-party libraries that may
/// crash, and shows that process's output. RETURNS its status, or kExitFailed if it did not end
/// by itself.
ExitStatus RelayScript(Session &session);

} // namespace ispctl

#endif
