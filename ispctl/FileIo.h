#ifndef ISPCTL_FILE_IO_H
#define ISPCTL_FILE_IO_H

#include <cstddef>
#include <optional>
#include <string>

namespace ispctl {

/// Reads a file that the user names; it may be a pipe or a device, so its size is not known in
/// advance.
/// \param limit  a longer file is an error. UNITS: bytes
/// RETURNS nothing on failure, with the reason in error.
std::optional<std::string> ReadInputFile(const std::string &name, std::size_t limit,
                                         std::string &error);

/// RETURNS whether all bytes were written; if not, error is the reason.
bool WriteOutputFile(const std::string &name, const std::string &bytes, std::string &error);

} // namespace ispctl

#endif
