#ifndef ISPCTL_ENVIRONMENT_H
#define ISPCTL_ENVIRONMENT_H

#include <filesystem>
#include <string>

namespace ispctl {

/// RETURNS the name of the encoding that the environment asks for; without such a locale that of C.
std::string EnvironmentEncoding();

/// RETURNS whether that encoding is UTF-8.
bool IsUtf8Environment();

/// RETURNS whether the bytes of path are text in that encoding.
bool IsTextOfEnvironment(const std::filesystem::path &path);

} // namespace ispctl

#endif
