#ifndef ISPCTL_FILE_IO_H
#define ISPCTL_FILE_IO_H

#include <cstddef>
#include <optional>
#include <string>

namespace ispctl {

/// The bytes of a file of the caller's, which may be a pipe or a device.
/// \param limit  of a longer file nothing is kept. UNITS: bytes
/// RETURNS nothing on failure, with the reason in error.
std::optional<std::string> ReadInputFile(const std::string &name, std::size_t limit,
                                         std::string &error);

/// RETURNS whether all bytes were written; else error says why not.
bool WriteOutputFile(const std::string &name, const std::string &bytes, std::string &error);

} // namespace ispctl

#endif
