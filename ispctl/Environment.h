#ifndef ISPCTL_ENVIRONMENT_H
#define ISPCTL_ENVIRONMENT_H

#include <filesystem>
#include <string>

namespace ispctl {

/// RETURNS the name of the encoding that the environment selects; that of C if its locale does not
/// exist.
std::string EnvironmentEncoding();

/// RETURNS whether that encoding is UTF-8.
bool IsUtf8Environment();

/// RETURNS whether the bytes of path are valid in that encoding; plug-ins get such a path only.
bool IsTextOfEnvironment(const std::filesystem::path &path);

} // namespace ispctl

#endif
