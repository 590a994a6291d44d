#ifndef ISPCTL_ENVIRONMENT_H
#define ISPCTL_ENVIRONMENT_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace ispctl {

/// RETURNS the name of the encoding that the environment selects; that of C if its locale does not
/// exist.
std::string EnvironmentEncoding();

/// RETURNS whether that encoding is UTF-8.
bool IsUtf8Environment();

/// RETURNS whether the bytes of path are valid in that encoding; plug-ins get such a path only.
bool IsTextOfEnvironment(const std::filesystem::path &path);

/// RETURNS how many characters of that encoding text is, up to its first NUL; nothing if it is not
/// text in that encoding.
std::optional<std::size_t> CountCharactersOfEnvironment(const std::string &text);

} // namespace ispctl

#endif
