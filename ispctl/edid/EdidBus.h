#ifndef ISPCTL_EDID_EDID_BUS_H
#define ISPCTL_EDID_EDID_BUS_H

#include <optional>

#include "edid/EdidCommand.h"
#include "edid/EdidInput.h"

namespace ispctl {

/// Reads the EDID of a display through the communication library of the options: as many blocks as
/// it declares, and no more. If a block cannot be read, those before it are the result.
/// REQUIRES: options.UsesBus(), and a process of its own.
/// RETURNS nothing if not even the base block can be read. A failure is reported, with its exit
/// status in status.
std::optional<edid::Input> ReadBus(const EdidOptions &options, Session &session,
                                   ExitStatus &status);

} // namespace ispctl

#endif
