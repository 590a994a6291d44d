#include "ParserEnd.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "JsonEvents.h"
#include "ParserHint.h"

namespace ispctl {

std::vector<std::string> WithHelpOption(const CLI::App &app, std::vector<std::string> arguments) {
    const bool isOption = arguments.size() > 1 && arguments[1].starts_with("-");
    if (arguments.empty() || arguments.front() != "help" || isOption) {
        return arguments;
    }
    arguments.erase(arguments.begin());
    const CLI::App *command = &app;
    for (const std::string &name : arguments) {
        const auto found =
            command->get_subcommands([&](const CLI::App *sub) { return sub->get_name() == name; });
        if (found.empty()) {
            return arguments;
        }
        command = found.front();
    }
    arguments.emplace_back("--help");
    return arguments;
}

bool AsksForJson(const std::vector<std::string> &arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

ExitStatus ShowParserEnd(const CLI::App &app, const std::vector<std::string> &arguments,
                         const CLI::ParseError &end, bool json, ConsoleStreams &streams) {
    std::ostringstream output;
    std::ostringstream error;
    if (app.exit(end, output, error) == 0) {
        streams.Print(Stream::Output, output.str());
        return kExitSuccess;
    }
    streams.Print(Stream::Error, error.str());
    std::string reason = end.what();
    if (const std::string hint = NearestArgument(app, arguments); !hint.empty()) {
        streams.PrintMessage(hint);
        reason += "; " + hint;
    }
    if (json) {
        JsonEvents::WriteNotCalled(streams, kExitUsage, "usage", reason, {});
    }
    return kExitUsage;
}

} // namespace ispctl
