#ifndef ISPCTL_DOCTOR_PLUGIN_CHECK_H
#define ISPCTL_DOCTOR_PLUGIN_CHECK_H

#include "doctor/Finding.h"
#include "doctor/LoadableFile.h"
#include "doctor/Places.h"
#include "doctor/PluginProbe.h"
#include "doctor/WriteAccess.h"

namespace ispctl::doctor {

/// The argument of the probing process that names a role.
const char *NameOf(PluginRole role);

/// What is reported about a plug-in that cannot be loaded.
const LoadFindings &FindingsOf(PluginRole role);

/// Checks one plug-in: existence, type, architecture, whether it can be loaded, its functions, who
/// may replace it.
/// \param libraryWorks  whether the library can be opened first, as in a run
/// RETURNS false if the user stopped that.
bool CheckPlugin(const Places &places, PluginRole role, bool libraryWorks, Report &report,
                 WriteAccess &access);

} // namespace ispctl::doctor

#endif
