// The console: one subcommand a job. A subcommand that hands arguments on cuts them off before the
// option parser sees them, because that parser looks for its own options to the end of the line.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "ArgumentBorder.h"
#include "ConsoleStreams.h"
#include "RunCommand.h"
#include "edid/AddEdid.h"
#include "script/AddScript.h"

namespace {

constexpr const char *kRunFooter = R"(
Options of run come before ARGS. From the first argument that is none of them
everything goes to the library as typed; a -- at that place is dropped.
Relative file names in ARGS are taken from the library's folder.

Examples:
  ispctl run --virtual --isp --fw "$PWD/monitor.bin"
      programs a firmware file into the virtual scaler
  ispctl run --json --log line.log -- --isp --comm 1 --fw /srv/fw/monitor.bin
      programs a device, for a program that reads events from standard output

Exit status: 0 success, 1 failed run, 2 wrong use (the library was not called),
130 stopped by a second Ctrl-C.)";

CLI::App *AddRun(CLI::App &app, ispctl::RunOptions &options) {
    CLI::App *run = app.add_subcommand(
        "run", "Hands ARGS to the library as one command line and shows the run.");
    run->footer(kRunFooter);
    CLI::Option *file = run->add_option("--lib", options.library, "the library to open, by path")
                            ->type_name("FILE");
    run->add_flag("--virtual", options.virtualScaler,
                  "take the virtual scaler's library: no hardware is touched")
        ->disable_flag_override()
        ->excludes(file);
    run->add_flag("--json", options.json, "standard output carries JSON only, one event a line")
        ->disable_flag_override();
    run->add_option("--log", options.log, "append the run to FILE, with times")->type_name("FILE");
    // For the help only: ARGS are cut off before the parser sees them.
    run->add_option("ARGS", options.arguments, "the library's own options, as typed")
        ->type_name("");
    return run;
}

int Main(std::vector<std::string> arguments) {
    CLI::App app("The console of ScalerIsp, the firmware programming library of display scalers.",
                 "ispctl");
    app.set_version_flag("--version", "ispctl " ISPCTL_VERSION);
    app.require_subcommand(1);
    ispctl::RunOptions runOptions;
    CLI::App *run = AddRun(app, runOptions);
    ispctl::ExitStatus status = ispctl::kExitSuccess;
    ispctl::ScriptOptions scriptOptions;
    ispctl::AddScript(app, scriptOptions, status);
    ispctl::EdidOptions edidOptions;
    ispctl::AddEdid(app, edidOptions, status);
    if (!arguments.empty() && arguments.front() == run->get_name()) {
        std::vector<std::string> own(arguments.begin() + 1, arguments.end());
        runOptions.arguments = ispctl::TakeForeign(*run, own);
        own.insert(own.begin(), arguments.front());
        arguments = std::move(own);
    }
    try {
        std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? ispctl::kExitSuccess : ispctl::kExitWrongUse;
    }
    return run->parsed() ? ispctl::RunCommand(runOptions) : status;
}

} // namespace

int main(int argc, char **argv) {
    try {
        ispctl::EnsureStandardDescriptors();
        return Main(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ispctl: %s\n", error.what());
        return ispctl::kExitWrongUse;
    }
}
