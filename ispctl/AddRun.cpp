#include "AddRun.h"

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "chip/LibraryChoice.h"
#include "line/FindingTable.h"
#include "line/NearestName.h"
#include "station/AddStation.h"

namespace ispctl {
namespace {

const std::string kRunFooter = R"(
Options of run must precede ARGS. Everything from the first unrecognised
argument on is passed to the library unchanged; a -- at that point is removed.
Relative paths in ARGS are resolved against the library's directory.

Examples:
  ispctl run --virtual --isp --fw "$PWD/monitor.bin"
      programs a firmware file into the virtual scaler
  ispctl run --json --log line.log -- --isp --comm 1 --fw /srv/fw/monitor.bin
      programs a device, for a program that reads events from standard output

)";

/// Throws CLI::ValidationError, with the nearest name, for a finding that does not exist: a
/// misspelt name would accept nothing.
void AddAllowed(const std::string &names, std::vector<std::string> &allowed) {
    std::istringstream words(names);
    for (std::string name; std::getline(words, name, ',');) {
        if (FindFindingRow(name) == nullptr) {
            std::vector<std::string_view> known;
            for (const FindingRow &row : kFindingRows) {
                known.push_back(row.name);
            }
            const auto nearest = NearestName(name, known);
            throw CLI::ValidationError(
                "--allow",
                "there is no finding " + name +
                    (nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?"));
        }
        if (name == "ispctl-option") {
            throw CLI::ValidationError("--allow", name +
                                                      " cannot be accepted: the library that was "
                                                      "meant would not be opened");
        }
        allowed.push_back(name);
    }
}

} // namespace

CLI::App *AddRun(CLI::App &app, RunOptions &options) {
    CLI::App *run = app.add_subcommand(
        "run", "Passes ARGS to the library as one command line and shows the run.");
    run->footer(kRunFooter + ExitStatusHelp());
    AddLibraryChoice(*run, options.library, options.virtualScaler);
    run->add_flag("--json", options.json, "write only JSON to standard output, one event per line")
        ->disable_flag_override();
    run->add_option("--log", options.log, "append the run to FILE, with timestamps")
        ->type_name("FILE");
    run->add_option_function<std::string>(
           "--allow", [&options](const std::string &names) { AddAllowed(names, options.allowed); },
           "run in spite of these findings, by name, separated by commas")
        ->type_name("NAME,...");
    run->add_flag("--verbatim", options.verbatim, "pass ARGS unchecked and show text unchanged")
        ->disable_flag_override();
    run->add_flag("--dry-run", options.dryRun, "explain ARGS instead of running them")
        ->disable_flag_override();
    AddStationOptions(*run, options.station);
    // For the help only: ARGS are split off before the parser sees them.
    run->add_option("ARGS", options.arguments, "the library's own options, passed unchanged")
        ->type_name("");
    return run;
}

} // namespace ispctl
