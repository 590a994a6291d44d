#ifndef ISPCTL_EDID_EDID_SOURCE_H
#define ISPCTL_EDID_EDID_SOURCE_H

#include <optional>
#include <string>

#include "edid/Finding.h"

namespace ispctl::edid {

/// Reads a file, a device or a pipe that the user names, or standard input for "-".
/// RETURNS nothing on failure, with the reason in problem: it cannot be read, has more than
/// kMaxInputBytes, or is a named pipe that nobody opens for writing.
std::optional<std::string> ReadSource(const std::string &name, Finding &problem);

} // namespace ispctl::edid

#endif
