#ifndef ISPCTL_COMMAND_LINE_H
#define ISPCTL_COMMAND_LINE_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ispctl {

/// Splits a line as the library does; nothing if the library rejects the line.
using CommandLineSplitter =
    std::function<std::optional<std::vector<std::string>>(const std::string &)>;

/// A command line for the library, or the reason why none can be built.
struct CommandLine {
    std::wstring line;
    std::string error; ///< empty: the line is valid

    bool IsValid() const {
        return error.empty();
    }
};

/// The longest command line that the library accepts. UNITS: bytes of UTF-8.
inline constexpr std::size_t kMaxLineBytes = 10239;

/// Builds the line that the library splits into a program name followed by exactly these arguments.
///
/// An argument that contains a space is enclosed in double quotes. Some lists cannot be expressed
/// that way and give an error: an empty argument, an argument that contains a double quote, bytes
/// that are not UTF-8, more than kMaxLineBytes, and an argument that starts and ends with a space
/// if the text between two earlier quoted arguments reads the same.
/// \param arguments  UTF-8
CommandLine BuildCommandLine(const std::vector<std::string> &arguments,
                             const CommandLineSplitter &split);

} // namespace ispctl

#endif
