#ifndef ISPCTL_FILE_HINTS_H
#define ISPCTL_FILE_HINTS_H

#include <filesystem>
#include <string>
#include <vector>

namespace ispctl {

/// The library resolves relative paths against its own directory, which surprises users of a shell.
/// RETURNS a message for each relative path in arguments that names an existing file in the
/// caller's directory but that the library resolves to another one.
/// \param libraryDirectory  absolute
/// \param callerDirectory   absolute
std::vector<std::string> FileHints(const std::vector<std::string> &arguments,
                                   const std::filesystem::path &libraryDirectory,
                                   const std::filesystem::path &callerDirectory);

} // namespace ispctl

#endif
