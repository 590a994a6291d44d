#ifndef ISPCTL_DOCTOR_PLUGIN_PROBE_H
#define ISPCTL_DOCTOR_PLUGIN_PROBE_H

#include <initializer_list>
#include <span>
#include <string>

#include "LibraryProcess.h"

namespace ispctl::doctor {

enum class PluginRole { Isp, Sign };

/// A function that a plug-in may export.
struct PluginFunction {
    enum class Use { Required, Optional, NeverCalled };
    const char *name;
    Use use;
};

/// The functions of the ISP plug-in or of the sign/verify plug-in, in the order of the look-up.
std::span<const PluginFunction> FunctionsOf(PluginRole role);

/// In the process that opens libraries: opens the library, as a run does before it loads a plug-in,
/// then the plug-in with the flags that the library uses, and looks up every function of a role, or
/// of both. Sends
///   "loaded", "not-loaded" TEXT, "function" NAME for each that is there, and kProbeEnd.
/// \param library  empty: none is opened
void ProbePlugin(const std::string &library, const std::string &plugin,
                 std::initializer_list<PluginRole> roles, ParentLink &link);

} // namespace ispctl::doctor

#endif
