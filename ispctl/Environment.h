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

/// Whether the library can express the name of its directory: in the environment's encoding, on
/// Linux else in UTF-8. If not, that name is empty in records.
bool HasNameInRecords(const std::filesystem::path &directory);

/// RETURNS how many characters of that encoding text is, up to its first NUL; nothing if it is not
/// text in that encoding.
std::optional<std::size_t> CountCharactersOfEnvironment(const std::string &text);

} // namespace ispctl

#endif
