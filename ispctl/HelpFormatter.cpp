#include "HelpFormatter.h"

#include <algorithm>
#include <string_view>

#include "WrapText.h"

namespace ispctl {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kTextColumn = 24;

/// A name and what it means, from the text column on, or below a name that reaches it.
std::string Entry(const std::string &name, const std::string &meaning) {
    std::string head = "  " + name;
    if (meaning.empty()) {
        return head + "\n";
    }
    std::string lines;
    if (head.size() + 2 > kTextColumn) {
        lines = head + "\n";
        head.clear();
    }
    head.resize(kTextColumn, ' ');
    return lines + WrapText(meaning, {kWidth, kTextColumn}, head);
}

struct Footer {
    std::string beforeOptions;
    std::string atEnd;
};

Footer SplitFooter(const std::string &text) {
    constexpr std::string_view kEnd = "\nExit status";
    const std::size_t end = std::min(text.find(kEnd), text.size());
    Footer footer{text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
    for (std::string *part : {&footer.beforeOptions, &footer.atEnd}) {
        part->erase(0, std::min(part->find_first_not_of('\n'), part->size()));
        part->erase(part->find_last_not_of('\n') + 1);
        *part += part->empty() ? "" : "\n";
    }
    return footer;
}

/// The options that cannot be given together with this one.
std::string Excluded(const CLI::Option *option) {
    std::string names;
    for (const CLI::Option *other : option->get_excludes()) {
        names += (names.empty() ? "" : ", ") + other->get_name();
    }
    return names.empty() ? "" : " (not with " + names + ")";
}

} // namespace

std::string HelpFormatter::make_help(const CLI::App *app, std::string name,
                                     CLI::AppFormatMode mode) const {
    if (mode == CLI::AppFormatMode::Sub) {
        return CLI::Formatter::make_help(app, name, mode);
    }
    const Footer footer = SplitFooter(app->get_footer());
    std::string help = make_description(app) + make_usage(app, name);
    help += footer.beforeOptions.empty() ? "" : "\n" + footer.beforeOptions;
    help += make_positionals(app) + make_groups(app, mode) + make_subcommands(app, mode);
    return help + (footer.atEnd.empty() ? "" : "\n" + footer.atEnd);
}

std::string HelpFormatter::make_description(const CLI::App *app) const {
    return WrapText(app->get_description(), {kWidth, 0});
}

std::string HelpFormatter::make_subcommand(const CLI::App *command) const {
    return Entry(command->get_name(), command->get_description());
}

std::string HelpFormatter::make_option(const CLI::Option *option, bool isPositional) const {
    std::string name = make_option_name(option, isPositional);
    std::replace(name.begin(), name.end(), ',', ' ');
    if (!isPositional && option->get_type_size() != 0 && !option->get_type_name().empty()) {
        name += " " + option->get_type_name();
    }
    return Entry(name, option->get_description() + Excluded(option));
}

} // namespace ispctl
