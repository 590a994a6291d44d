#include "CommandLine.h"

#include <algorithm>
#include <fmt/format.h>

#include "Utf8.h"

namespace ispctl {
namespace {

// The library skips the first token and mishandles a quote at the start of the line, so this token
// comes before all arguments.
constexpr const char *kProgramName = "ispctl";

std::string Name(const std::vector<std::string> &arguments, std::size_t index) {
    return fmt::format("argument {} ({})", index + 1, EscapeBytes(arguments[index]).text);
}

// Checks one argument alone, because its message can name what to change.
std::string ArgumentError(const std::vector<std::string> &arguments, std::size_t index) {
    const std::string &argument = arguments[index];
    if (argument.empty()) {
        return fmt::format(
            "argument {} is empty; the library's command line cannot express an empty "
            "argument, omit it",
            index + 1);
    }
    if (!WideFromUtf8(argument)) {
        return Name(arguments, index) + " is not valid UTF-8";
    }
    if (argument.find('"') != std::string::npos) {
        return Name(arguments, index) +
               " contains a double quote, which the library's command line "
               "cannot express; rename the file, for example";
    }
    return "";
}

std::string Join(const std::vector<std::string> &arguments) {
    std::string line = kProgramName;
    for (const std::string &argument : arguments) {
        const bool quoted = argument.find(' ') != std::string::npos;
        line += quoted ? " \"" + argument + "\"" : " " + argument;
    }
    return line;
}

bool StartsAndEndsWithSpace(const std::string &argument) {
    return argument.front() == ' ' && argument.back() == ' ';
}

// The library locates the text of a quoted token by searching for it. The end of one quoted token,
// the text after it and the start of the next one can look like a token that starts and ends with a
// space.
std::string MisreadError(const std::vector<std::string> &arguments) {
    const auto found = std::find_if(arguments.begin(), arguments.end(), StartsAndEndsWithSpace);
    if (found == arguments.end()) {
        return "the library would split this command line into different arguments";
    }
    const auto index = static_cast<std::size_t>(found - arguments.begin());
    return Name(arguments, index) + " starts and ends with a space and follows another argument "
                                    "with spaces, so the library would misread it; remove a space";
}

// RETURNS the empty string if the library splits the line into exactly these arguments.
std::string RoundTripError(const std::vector<std::string> &arguments,
                           const std::optional<std::vector<std::string>> &split) {
    if (!split) {
        return "the library rejects the quoting of this command line";
    }
    const bool same = split->size() == arguments.size() + 1 && split->front() == kProgramName &&
                      std::equal(arguments.begin(), arguments.end(), split->begin() + 1);
    return same ? "" : MisreadError(arguments);
}

} // namespace

CommandLine BuildCommandLine(const std::vector<std::string> &arguments,
                             const CommandLineSplitter &split) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string error = ArgumentError(arguments, i);
        if (!error.empty()) {
            return {L"", std::move(error)};
        }
    }
    const std::string line = Join(arguments);
    if (line.size() > kMaxLineBytes) {
        return {L"", fmt::format("the command line is {} bytes long; the library reads at most {}",
                                 line.size(), kMaxLineBytes)};
    }
    std::string error = RoundTripError(arguments, split(line));
    return {error.empty() ? WideFromUtf8(line).value() : L"", std::move(error)};
}

} // namespace ispctl
