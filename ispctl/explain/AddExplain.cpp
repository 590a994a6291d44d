#include "explain/AddExplain.h"

#include <CLI/CLI.hpp>

#include "chip/LibraryChoice.h"

namespace ispctl {
namespace {

const std::string kFooter = R"(
Examples:
  ispctl explain --isp --fw /srv/fw/monitor.bin
      what the line does, the records that plug-ins get, the banks of the flash
  ispctl explain --html sheet.html --isp --factory --fw /srv/fw/monitor.bin
      a page to review before a factory run
  ispctl explain --record good.rec --isp --fw /srv/fw/monitor.bin
  ispctl explain --diff good.rec --isp --comm 1 --fw /srv/fw/monitor.bin
      keeps the records of a line, and shows what another line changes
  ispctl explain --decode dump.rec
      shows a record that a plug-in has written to a file

Options of explain come before ARGS, as with run. No plug-in is opened.
)";

void AddFile(CLI::App *command, const char *name, std::string &file, const char *help) {
    command->add_option(name, file, help)->type_name("FILE");
}

} // namespace

CLI::App *AddExplain(CLI::App &app, ExplainOptions &options, Session &session, ExitStatus &status) {
    CLI::App *explain =
        app.add_subcommand("explain", "Shows what a command line does, without opening a plug-in.");
    explain->footer(kFooter + ExitStatusHelp());
    AddLibraryChoice(*explain, options.library, options.virtualScaler);
    explain->add_flag("--json", options.json, "write one JSON document")->disable_flag_override();
    explain->add_flag("--all", options.all, "show fields with their default values, too")
        ->disable_flag_override();
    AddFile(explain, "--svg", options.svg,
            "write the picture of the flash to FILE; - is standard output");
    AddFile(explain, "--html", options.html,
            "write everything to FILE, as one page; - is standard output");
    AddFile(explain, "--record", options.record, "write the records to FILE and FILE.sign");
    AddFile(explain, "--decode", options.decode,
            "show the record in FILE (- is standard input) instead of a line");
    AddFile(explain, "--diff", options.diff,
            "compare with the record in FILE, or standard input (-)");
    // For the help only: ARGS are cut off before the parser sees them.
    explain->add_option("ARGS", options.arguments, "the library's own options, as typed")
        ->type_name("");
    explain->callback([&options, &session, &status] { status = ExplainCommand(options, session); });
    return explain;
}

} // namespace ispctl
