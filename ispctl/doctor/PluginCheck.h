#ifndef ISPCTL_DOCTOR_PLUGIN_CHECK_H
#define ISPCTL_DOCTOR_PLUGIN_CHECK_H

#include "doctor/Finding.h"
#include "doctor/LoadableFile.h"
#include "doctor/Places.h"
#include "doctor/PluginProbe.h"
#include "doctor/Probe.h"
#include "doctor/WriteAccess.h"

namespace ispctl::doctor {

/// The argument of the probing process that opens a plug-in.
inline constexpr const char *kProbePlugin = "plugin";

/// What is reported about a plug-in that cannot be loaded.
/// \param missing  the finding if its file does not exist
LoadFindings FindingsOfPlugin(FindingId missing);
/// The same for the plug-in that the library looks for in this role.
LoadFindings FindingsOf(PluginRole role);

/// Checks a plug-in's file as far as that is possible without loading it: existence, type,
/// architecture. RETURNS whether the loader can be asked.
bool CheckFile(const std::string &file, const LoadFindings &findings, Report &report);

/// Reports what the process that loaded a plug-in has seen. RETURNS whether it was loaded.
bool ReportLoading(const std::string &file, const LoadFindings &findings,
                   const ProbeOutcome &outcome, Report &report);

/// Whether the process that loaded a plug-in has found a function in it.
bool HasExport(const ProbeOutcome &outcome, const char *function);

/// Reports a plug-in of the other role, with the path where the library looks for it.
void ReportOtherRole(const std::string &file, PluginRole role, Report &report);

/// Reports each function of a loaded plug-in as present or missing.
void ReportFunctions(const std::string &file, PluginRole role, const ProbeOutcome &outcome,
                     Report &report);

/// Checks one plug-in: existence, type, architecture, whether it can be loaded, its functions, who
/// may replace it.
/// \param libraryWorks  whether the library can be opened first, as in a run
/// RETURNS false if the user stopped that.
bool CheckPlugin(const Places &places, PluginRole role, bool libraryWorks, Report &report,
                 WriteAccess &access);

} // namespace ispctl::doctor

#endif
