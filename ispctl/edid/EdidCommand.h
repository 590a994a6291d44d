#ifndef ISPCTL_EDID_EDID_COMMAND_H
#define ISPCTL_EDID_EDID_COMMAND_H

#include <string>

#include "Session.h"

namespace ispctl {

/// The options of `ispctl edid`.
struct EdidOptions {
    std::string file;
    std::string form;    ///< "binary", "hex", "list"; empty: detected
    std::string library; ///< empty: the installed one
    bool text = false;   ///< print the byte list only
};

/// Checks an EDID and shows it. RETURNS kExitFailed if it is invalid.
ExitStatus EdidCommand(const EdidOptions &options, Session &session);

} // namespace ispctl

#endif
