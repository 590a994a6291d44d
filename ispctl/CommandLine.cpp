#include "CommandLine.h"

#include <algorithm>
#include <fmt/format.h>

#include "Utf8.h"

namespace ispctl {
namespace {

// The library passes over a quote that begins the line; this word stands in front of every other.
constexpr const char *kProgramWord = "ispctl";

std::string Name(const std::vector<std::string> &arguments, std::size_t index) {
    return fmt::format("argument {} ({})", index + 1, EscapeBytes(arguments[index]).text);
}

// Reasons that lie in one argument alone.
std::string ArgumentError(const std::vector<std::string> &arguments, std::size_t index) {
    const std::string &argument = arguments[index];
    if (argument.empty()) {
        return fmt::format("argument {} is empty; the library's command line cannot carry an empty "
                           "argument, leave it out",
                           index + 1);
    }
    if (!WideFromUtf8(argument)) {
        return Name(arguments, index) + " is not valid UTF-8";
    }
    if (argument.find('"') != std::string::npos) {
        return Name(arguments, index) + " holds a double quote, which the library's command line "
                                        "cannot carry; rename the file, for instance";
    }
    return "";
}

std::string Join(const std::vector<std::string> &arguments) {
    std::string line = kProgramWord;
    for (const std::string &argument : arguments) {
        const bool quoted = argument.find(' ') != std::string::npos;
        line += quoted ? " \"" + argument + "\"" : " " + argument;
    }
    return line;
}

bool BeginsAndEndsWithBlank(const std::string &argument) {
    return argument.front() == ' ' && argument.back() == ' ';
}

// The library finds the text of a quoted word by search. The end of one quoted word, what follows
// it and the beginning of the next one can look like a word that begins and ends with a blank.
std::string MisreadError(const std::vector<std::string> &arguments) {
    const auto found = std::find_if(arguments.begin(), arguments.end(), BeginsAndEndsWithBlank);
    if (found == arguments.end()) {
        return "these arguments would not reach the library as they are";
    }
    const auto index = static_cast<std::size_t>(found - arguments.begin());
    return Name(arguments, index) + " begins and ends with a blank, and behind another argument "
                                    "with blanks the library would misread it; drop a blank";
}

// Empty where the library reads the line as it is meant.
std::string RoundTripError(const std::vector<std::string> &arguments,
                           const std::optional<std::vector<std::string>> &words) {
    if (!words) {
        return "the library cannot split the line that these arguments make";
    }
    const bool same = words->size() == arguments.size() + 1 && words->front() == kProgramWord &&
                      std::equal(arguments.begin(), arguments.end(), words->begin() + 1);
    return same ? "" : MisreadError(arguments);
}

} // namespace

CommandLine BuildCommandLine(const std::vector<std::string> &arguments,
                             const CommandLineSplitter &split) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string refusal = ArgumentError(arguments, i);
        if (!refusal.empty()) {
            return {L"", std::move(refusal)};
        }
    }
    const std::string line = Join(arguments);
    if (line.size() > kMaxLineBytes) {
        return {L"", fmt::format("the command line takes {} bytes; the library reads at most {}",
                                 line.size(), kMaxLineBytes)};
    }
    std::string refusal = RoundTripError(arguments, split(line));
    return {refusal.empty() ? WideFromUtf8(line).value() : L"", std::move(refusal)};
}

} // namespace ispctl
