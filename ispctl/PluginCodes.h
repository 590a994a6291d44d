#ifndef ISPCTL_PLUGIN_CODES_H
#define ISPCTL_PLUGIN_CODES_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ispctl {

/// What a plug-in's maker says of one of its result codes.
struct PluginCode {
    std::string meaning;
    std::string remedy; ///< may be empty
};

/// The words for a code in the file PlugIn/libIsp.codes of the library's directory; nothing if
/// there is no such file or no line for the code. At most 64 KiB of a regular file are read.
std::optional<PluginCode> FindPluginCode(const std::filesystem::path &libraryDirectory, int code);

/// The same for a communication library: in the file beside it that has the extension .codes
/// instead of its own.
std::optional<PluginCode> FindCommCode(const std::filesystem::path &commLibrary, int code);

/// The same in the contents of such a file: one line per code, "CODE MEANING", or with a remedy
/// after a tab or " | ". CODE is decimal or, after 0x, hexadecimal; a line that begins with "#" or
/// with anything but a number is a comment. The first line of a code wins.
std::optional<PluginCode> FindPluginCodeIn(std::string_view file, int code);

} // namespace ispctl

#endif
