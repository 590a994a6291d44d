#ifndef ISPCTL_FILE_IO_H
#define ISPCTL_FILE_IO_H

#include <cstddef>
#include <optional>
#include <string>

#include "InputSource.h"

namespace ispctl {

/// Why an input was not read.
struct InputFault {
    enum class Kind { Unreadable, TooLarge };
    Kind kind = Kind::Unreadable;
    std::string text;
};

/// Reads to the end. The input may be a pipe or a device, so its size is not known in advance.
/// \param shown  its name in messages
/// \param limit  a longer input is an error. UNITS: bytes
/// RETURNS nothing on failure, with the reason in fault: among others, a named pipe that nobody
/// opens for writing.
std::optional<std::string> ReadInput(InputSource source, const std::string &shown,
                                     std::size_t limit, InputFault &fault);

/// RETURNS whether all bytes were written; if not, error is the reason.
bool WriteOutputFile(const std::string &name, const std::string &bytes, std::string &error);

} // namespace ispctl

#endif
