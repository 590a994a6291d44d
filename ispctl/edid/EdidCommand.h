#ifndef ISPCTL_EDID_EDID_COMMAND_H
#define ISPCTL_EDID_EDID_COMMAND_H

#include <optional>
#include <string>
#include <vector>

#include "Session.h"

namespace ispctl {

/// The options of `ispctl edid`.
struct EdidOptions {
    std::vector<std::string> files;
    std::string form;           ///< "binary", "hex", "list"; empty: detected
    std::string output;         ///< file for the bytes; empty: none
    bool text = false;          ///< print the byte list only
    bool json = false;          ///< print JSON only
    bool fixChecksum = false;   ///< correct the checksums before anything else
    std::string library;        ///< with the bus: the ScalerIsp library; empty: the installed one
    std::string comm;           ///< the communication library
    bool virtualScaler = false; ///< use the virtual bus
    std::optional<unsigned short> channel; ///< communication channel to select first

    /// Whether the EDID is read from a display.
    bool UsesBus() const {
        return virtualScaler || !comm.empty();
    }
};

/// Shows EDIDs and checks them. RETURNS the largest status of the inputs: kExitSuccess, kExitFailed
/// with problems, kExitFileError if one cannot be read.
ExitStatus EdidCommand(const EdidOptions &options, Session &session);

} // namespace ispctl

#endif
