#include "ParserHint.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <string_view>

#include "line/NearestName.h"

namespace ispctl {
namespace {

std::string Question(std::string_view typed, const std::vector<std::string> &known) {
    const std::vector<std::string_view> names(known.begin(), known.end());
    const std::string_view nearest = NearestName(typed, names);
    return nearest.empty() ? "" : fmt::format("{}: did you mean {}?", typed, nearest);
}

std::vector<std::string> OptionNames(const CLI::App &command) {
    std::vector<std::string> names;
    for (const CLI::Option *option : command.get_options()) {
        for (const std::string &name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

const CLI::App *Subcommand(const CLI::App &command, const std::string &name) {
    for (const CLI::App *sub : command.get_subcommands({})) {
        if (sub->get_name() == name) {
            return sub;
        }
    }
    return nullptr;
}

std::vector<std::string> SubcommandNames(const CLI::App &command) {
    std::vector<std::string> names;
    for (const CLI::App *sub : command.get_subcommands({})) {
        if (!sub->get_group().empty()) { // the group of a hidden one is empty
            names.push_back(sub->get_name());
        }
    }
    return names;
}

} // namespace

std::string NearestArgument(const CLI::App &app, const std::vector<std::string> &arguments) {
    const CLI::App *command = &app;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument.starts_with("--")) {
            const std::string name = argument.substr(0, argument.find('='));
            const CLI::Option *option = command->get_option_no_throw(name);
            if (option == nullptr && app.get_option_no_throw(name) != nullptr) {
                return fmt::format("{} is an option of ispctl alone: ispctl {}", name, name);
            }
            if (option == nullptr) {
                return Question(name, OptionNames(*command));
            }
            const bool valueFollows = option->get_expected_min() > 0 && name == argument;
            i += valueFollows ? 1 : 0;
        } else if (!argument.starts_with("-") && !SubcommandNames(*command).empty()) {
            const CLI::App *sub = Subcommand(*command, argument);
            if (sub == nullptr) {
                const std::string question = Question(argument, SubcommandNames(*command));
                return question.empty() ? fmt::format("there is no command {}", argument)
                                        : question;
            }
            command = sub;
        }
    }
    return "";
}

} // namespace ispctl
