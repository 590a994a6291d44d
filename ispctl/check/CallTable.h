#ifndef ISPCTL_CHECK_CALL_TABLE_H
#define ISPCTL_CHECK_CALL_TABLE_H

#include <span>
#include <string>

#include "check/CallInput.h"
#include "check/CallReporter.h"
#include "doctor/PluginProbe.h"

namespace ispctl::check {

/// The functions of a loaded plug-in that a row needs.
struct CallTarget {
    void *function = nullptr;
    void *verify = nullptr; ///< VerifySignatureExport of the same plug-in, or null
    const char *words = ""; ///< what the function is given, as in the row
};

/// One call that asks a plug-in for nothing that could harm a device.
struct CallRow {
    doctor::PluginRole role;
    const char *function;
    const char *words; ///< what it is given, " with an empty bank map"; may be empty
    void (*prepare)(CallInput &);
    int (*call)(void *function, CallInput &);
    /// Reports what is wrong about the result; may be null.
    void (*judge)(const CallTarget &, CallInput &, int result, CallReporter &);
};

/// In the order in which they are made: the one that leaves the ISP mode is the last.
std::span<const CallRow> CallRows();

} // namespace ispctl::check

#endif
