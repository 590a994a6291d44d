#ifndef ISPCTL_DOCTOR_DOCTOR_COMMAND_H
#define ISPCTL_DOCTOR_DOCTOR_COMMAND_H

#include "Session.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Examines the installation, the library's directory and the environment, and reports what it
/// finds with a remedy. Writes nothing. RETURNS 0 if nothing is worse than a remark, 3 for
/// warnings, 5 without a usable ISP plug-in, kExitFailedRun for other errors.
ExitStatus DoctorCommand(const Options &options, Session &session);

} // namespace ispctl::doctor

#endif
