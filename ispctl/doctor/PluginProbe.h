#ifndef ISPCTL_DOCTOR_PLUGIN_PROBE_H
#define ISPCTL_DOCTOR_PLUGIN_PROBE_H

#include <functional>
#include <span>
#include <string>

#include "LibraryProcess.h"

namespace ispctl::doctor {

enum class PluginRole { Isp, Sign };
constexpr PluginRole OtherRole(PluginRole role) {
    return role == PluginRole::Isp ? PluginRole::Sign : PluginRole::Isp;
}

/// A function that a plug-in may export.
struct PluginFunction {
    enum class Use { Required, Optional, NeverCalled };
    const char *name;
    Use use;
};

/// The functions of the ISP plug-in or of the sign/verify plug-in, in the order of the look-up.
std::span<const PluginFunction> FunctionsOf(PluginRole role);

/// "isp" or "sign".
const char *NameOf(PluginRole role);
/// "an ISP plug-in" or "a sign/verify plug-in".
const char *KindOf(PluginRole role);

/// Whether a plug-in is one of the other role, by its functions: it has all that the library
/// requires of that role and none that it requires of this one.
bool IsOfOtherRole(PluginRole role, const std::function<bool(const char *)> &exports);

/// In the process that opens libraries: opens the library, as a run does before it loads a plug-in,
/// then the plug-in with the flags that the library uses, and looks up every function of both
/// roles. Sends
///   "loaded", "not-loaded" TEXT, "function" NAME for each that is there, and kProbeEnd.
/// \param library  empty: none is opened
void ProbePlugin(const std::string &library, const std::string &plugin, ParentLink &link);

} // namespace ispctl::doctor

#endif
