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
    // What follows the names is left out: nothing that is only asked about may run.
    std::vector<std::string> names;
    const CLI::App *command = &app;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (command->get_subcommands([](const CLI::App *) { return true; }).empty()) {
            break;
        }
        const std::string &name = arguments[i];
        const auto found =
            command->get_subcommands([&](const CLI::App *sub) { return sub->get_name() == name; });
        names.push_back(name);
        if (found.empty()) {
            return names; // the parser refuses it
        }
        command = found.front();
    }
    names.emplace_back("--help");
    return names;
}

bool AsksForJson(const std::vector<std::string> &arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

namespace {

/// A word that is no command is the reason, not that a command is missing.
std::string ReasonOf(const CLI::App &app, const std::vector<std::string> &arguments,
                     const CLI::ParseError &end) {
    const bool lacksCommand = end.get_name() == "RequiredError" && !arguments.empty();
    const bool isCommand = lacksCommand && !app.get_subcommands([&](const CLI::App *command) {
                                                   return command->get_name() == arguments.front();
                                               })
                                                .empty();
    if (!lacksCommand || isCommand) {
        return end.what();
    }
    return arguments.front().starts_with('-')
               ? arguments.front() + " is no option of ispctl itself: options follow the command"
               : "there is no command " + arguments.front();
}

} // namespace

ExitStatus ShowParserEnd(const CLI::App &app, const std::vector<std::string> &arguments,
                         const CLI::ParseError &end, bool json, ConsoleStreams &streams) {
    std::ostringstream output;
    std::ostringstream error;
    if (app.exit(end, output, error) == 0) {
        streams.Print(Stream::Output, output.str());
        return kExitSuccess;
    }
    std::string reason = ReasonOf(app, arguments, end);
    if (reason == end.what()) {
        streams.Print(Stream::Error, error.str());
    } else {
        streams.PrintMessage(reason + "; ispctl --help lists the commands");
    }
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
