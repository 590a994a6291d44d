#ifndef ISPCTL_DOCTOR_PATHS_COMMAND_H
#define ISPCTL_DOCTOR_PATHS_COMMAND_H

#include "Session.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Prints where everything is looked for, and whether it exists. Opens nothing.
ExitStatus PathsCommand(const Options &options, Session &session);

} // namespace ispctl::doctor

#endif
