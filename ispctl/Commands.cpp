#include "Commands.h"

#include <memory>

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

/// An empty value would count as none: an unset variable of a shell would switch off a backup.
void RefuseEmptyValues(CLI::App &command) {
    for (CLI::Option *option : command.get_options()) {
        if (option->get_items_expected_max() > 0) {
            option->check([](const std::string &value) {
                return value.empty() ? std::string("the value must not be empty") : std::string();
            });
        }
    }
    for (CLI::App *below : command.get_subcommands([](const CLI::App *) { return true; })) {
        if (!below->get_group().empty()) { // hidden commands get their arguments from ispctl itself
            RefuseEmptyValues(*below);
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
    RefuseEmptyValues(app);
}

} // namespace ispctl
