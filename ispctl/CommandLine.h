#ifndef ISPCTL_COMMAND_LINE_H
#define ISPCTL_COMMAND_LINE_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ispctl {

/// How the library splits a line; nothing where it refuses it.
using CommandLineSplitter =
    std::function<std::optional<std::vector<std::string>>(const std::string &)>;

/// A command line for the library, or the reason why there is none.
struct CommandLine {
    std::wstring line;
    std::string refusal; ///< empty: the line is good

    bool IsValid() const {
        return refusal.empty();
    }
};

/// The largest command line that the library takes. UNITS: bytes of UTF-8.
inline constexpr std::size_t kMaxLineBytes = 10239;

/// Builds the line that the library splits into exactly these arguments behind a program word.
///
/// Arguments with a blank are put into double quotes as a whole. That leaves lists which no line of
/// ours can carry: an empty argument, an argument with a double quote in it, bytes that are not
/// UTF-8, more than kMaxLineBytes, and an argument that begins and ends with a blank where the text
/// between two quoted arguments in front of it reads the same. All of them are refused.
/// \param arguments  UTF-8
CommandLine BuildCommandLine(const std::vector<std::string> &arguments,
                             const CommandLineSplitter &split);

} // namespace ispctl

#endif
