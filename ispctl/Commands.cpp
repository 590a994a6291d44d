#include "Commands.h"

#include <fmt/format.h>
#include <memory>
#include <string_view>

#include "AddRun.h"
#include "HelpFormatter.h"

namespace ispctl {
namespace {

const std::string kFooter = R"(
Examples:
  ispctl run --virtual --isp --fw "$PWD/monitor.bin"
      programs a firmware file into the virtual scaler
  ispctl doctor
      examines the installation and says what to do
  ispctl help run

The pages that messages name, such as options.md, are in the directory that
"ispctl paths" shows as pages.
)" + ExitStatusHelp();

/// For the help only: `help COMMAND` is `COMMAND --help` when the parser sees it.
void AddHelp(CLI::App &app) {
    CLI::App *help = app.add_subcommand("help", "Shows the help of a command.");
    help->footer("Examples:\n  ispctl help run\n  ispctl help script check\n");
    help->add_option("COMMAND", "name of the command, and of its subcommand")->type_name("");
}

/// A value that is forgotten must not be replaced by what follows: `--log --virtual` would open the
/// device instead of the virtual scaler. And an empty one would count as none: an unset variable of
/// a shell would switch off a backup.
std::string ProblemOfValue(const std::string &value) {
    constexpr std::string_view kDigits = "0123456789";
    if (value.empty()) {
        return "the value must not be empty";
    }
    const bool isOption =
        value.size() > 1 && value[0] == '-' && kDigits.find(value[1]) == std::string_view::npos;
    return isOption
               ? fmt::format("its value is missing: {0} is taken for an option; a file of that "
                             "name is ./{0}",
                             value)
               : "";
}

void CheckValues(CLI::App &command) {
    for (CLI::Option *option : command.get_options()) {
        if (option->get_items_expected_max() > 0) {
            const bool isPositional = option->get_positional(); // "--" may stand before it
            option->check([isPositional](const std::string &value) {
                return isPositional && !value.empty() ? "" : ProblemOfValue(value);
            });
        }
    }
    for (CLI::App *below : command.get_subcommands([](const CLI::App *) { return true; })) {
        if (!below->get_group().empty()) { // hidden commands get their arguments from ispctl itself
            CheckValues(*below);
        }
    }
}

} // namespace

Commands::Commands(Session &session)
    : app("Command-line tool of ScalerIsp, the firmware programming library for display scalers.",
          "ispctl") {
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(kFooter);
    app.set_version_flag("--version", "ispctl " ISPCTL_VERSION,
                         "print the version of ispctl and exit");
    app.require_subcommand(1);
    run = AddRun(app, runOptions);
    explain = AddExplain(app, explainOptions, session, status);
    AddScript(app, scriptOptions, session, status);
    AddEdid(app, edidOptions, session, status);
    doctor::AddDoctor(app, doctorOptions, session, status);
    check::AddCheckPlugin(app, checkOptions, session, status);
    AddLog(app, summaryOptions, session, status);
    AddHelp(app);
    CheckValues(app);
}

} // namespace ispctl
