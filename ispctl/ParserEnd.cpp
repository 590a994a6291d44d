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

/// The argument that gives a value to a flag; empty if none does.
std::string FlagWithValue(const CLI::App &app, const std::vector<std::string> &arguments) {
    const auto commands = app.get_subcommands(); // that were given
    const CLI::App &command = commands.empty() ? app : *commands.front();
    for (const std::string &argument : arguments) {
        const std::string name = argument.substr(0, argument.find('='));
        const CLI::Option *option = command.get_option_no_throw(name);
        if (name.size() < argument.size() && option != nullptr &&
            option->get_items_expected_max() == 0) {
            return name;
        }
    }
    return "";
}

/// In the words of ispctl: what the parser missed last is seldom what was wrong first.
std::string ReasonOf(const CLI::App &app, const std::vector<std::string> &arguments,
                     const CLI::ParseError &end) {
    const auto kind = static_cast<CLI::ExitCodes>(end.get_exit_code());
    if (const std::string flag = FlagWithValue(app, arguments);
        kind == CLI::ExitCodes::ArgumentMismatch && !flag.empty()) {
        return flag + " takes no value";
    }
    if (arguments.empty() ||
        (kind != CLI::ExitCodes::RequiredError && kind != CLI::ExitCodes::ExtrasError)) {
        return end.what();
    }
    const std::string &first = arguments.front();
    if (first.starts_with('-')) {
        return first + " is no option of ispctl itself: options follow the command; ispctl --help "
                       "lists the commands";
    }
    const auto commands =
        app.get_subcommands([&](const CLI::App *command) { return command->get_name() == first; });
    return commands.empty() ? "there is no command " + first + "; ispctl --help lists the commands"
                            : end.what();
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
        streams.PrintMessage(reason);
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
