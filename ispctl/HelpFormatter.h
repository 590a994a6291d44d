#ifndef ISPCTL_HELP_FORMATTER_H
#define ISPCTL_HELP_FORMATTER_H

#include <CLI/CLI.hpp>
#include <string>

namespace ispctl {

/// The help of every command: what it does, how it is called, its examples, and only then the
/// options, within 80 columns. Examples and remarks are the footer of a command; what follows a
/// line "Exit status" in it stays at the end.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_help(const CLI::App *app, std::string name,
                          CLI::AppFormatMode mode) const override;
    std::string make_description(const CLI::App *app) const override;
    std::string make_subcommand(const CLI::App *command) const override;
    std::string make_option(const CLI::Option *option, bool isPositional) const override;
};

} // namespace ispctl

#endif
