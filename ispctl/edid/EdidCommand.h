#ifndef ISPCTL_EDID_EDID_COMMAND_H
#define ISPCTL_EDID_EDID_COMMAND_H

#include <string>

#include "Session.h"

namespace ispctl {

/// What `ispctl edid` was asked for.
struct EdidOptions {
    std::string file;
    std::string form;    ///< "binary", "hex", "list"; empty: as the file looks
    std::string library; ///< empty: the installed one
    bool text = false;   ///< print the toolkit's text and nothing else
};

/// Checks an EDID and shows it. RETURNS kExitFailedRun for one that is refused.
ExitStatus EdidCommand(const EdidOptions &options, Session &session);

} // namespace ispctl

#endif
