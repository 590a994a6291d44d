#ifndef ISPCTL_EDID_EDID_COMMAND_H
#define ISPCTL_EDID_EDID_COMMAND_H

#include <string>
#include <vector>

#include "Session.h"
#include "comm/CommOptions.h"

namespace ispctl {

/// The options of `ispctl edid`; those of a communication library are for reading a display.
struct EdidOptions : CommOptions {
    std::vector<std::string> files;
    std::string form;         ///< "binary", "hex", "list"; empty: detected
    std::string output;       ///< file for the bytes; empty: none
    bool text = false;        ///< print the byte list only
    bool json = false;        ///< print JSON only
    bool fixChecksum = false; ///< correct the checksums before anything else
};

/// Shows EDIDs and checks them. RETURNS the largest status of the inputs: kExitSuccess, kExitFailed
/// with problems, kExitFileError if one cannot be read.
ExitStatus EdidCommand(const EdidOptions &options, Session &session);

} // namespace ispctl

#endif
