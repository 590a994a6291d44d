#ifndef ISPCTL_CHECK_CALL_PROBE_H
#define ISPCTL_CHECK_CALL_PROBE_H

#include <string>

#include "check/CallTable.h"

namespace ispctl::check {

/// In the process that calls a plug-in: opens the library, as a run does, then the plug-in, makes
/// the call of a row several times, and unloads the plug-in. Reports what is seen, and kProbeEnd.
/// \param library    empty: none is opened
/// \param directory  where the files for calls are; becomes the working directory
void ProbeCall(const std::string &library, const std::string &plugin, const CallRow &row,
               const std::string &directory, ParentLink &link);

} // namespace ispctl::check

#endif
