// ispctl, one subcommand per task. The library's arguments are split off before the option parser
// sees them, because the parser looks for its own options up to the end of the line.

#include <algorithm>
#include <csignal>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>

#include "ChildProcess.h"
#include "ConsoleStreams.h"
#include "HelpFormatter.h"
#include "LibraryArguments.h"
#include "LibraryProcess.h"
#include "ParserEnd.h"
#include "RunCommand.h"
#include "Session.h"
#include "check/AddCheckPlugin.h"
#include "chip/LibraryChoice.h"
#include "doctor/AddDoctor.h"
#include "edid/AddEdid.h"
#include "explain/AddExplain.h"
#include "explain/ExplainCommand.h"
#include "line/FindingTable.h"
#include "line/NearestName.h"
#include "log/AddLog.h"
#include "script/AddScript.h"
#include "station/AddStation.h"

namespace {

const std::string kFooter = R"(
Examples:
  ispctl run --virtual --isp --fw "$PWD/monitor.bin"
      programs a firmware file into the virtual scaler
  ispctl doctor
      examines the installation and says what to do
  ispctl help run
)" + ispctl::ExitStatusHelp();

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
        if (ispctl::FindFindingRow(name) == nullptr) {
            std::vector<std::string_view> known;
            for (const ispctl::FindingRow &row : ispctl::kFindingRows) {
                known.push_back(row.name);
            }
            const auto nearest = ispctl::NearestName(name, known);
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

CLI::App *AddRun(CLI::App &app, ispctl::RunOptions &options) {
    CLI::App *run = app.add_subcommand(
        "run", "Passes ARGS to the library as one command line and shows the run.");
    run->footer(kRunFooter + ispctl::ExitStatusHelp());
    ispctl::AddLibraryChoice(*run, options.library, options.virtualScaler);
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
    ispctl::AddStationOptions(*run, options.station);
    // For the help only: ARGS are split off before the parser sees them.
    run->add_option("ARGS", options.arguments, "the library's own options, passed unchanged")
        ->type_name("");
    return run;
}

/// A command whose arguments end with those of the library.
struct Splitting {
    const CLI::App &command;
    std::vector<std::string> &ofLibrary;
};

/// Moves the library's part of the arguments to another list. REQUIRES: they begin with the
/// command.
/// RETURNS whether JSON is asked for before them, which counts also if another option there is
/// misspelt.
bool CutOffLibraryArguments(const Splitting &splitting, std::vector<std::string> &arguments) {
    std::vector<std::string> own(arguments.begin() + 1, arguments.end());
    const std::size_t typed = own.size();
    std::vector<std::string> ofLibrary = ispctl::SplitOffLibraryArguments(splitting.command, own);
    bool json = ispctl::AsksForJson(own);
    const bool marked = own.size() + ofLibrary.size() < typed; // a "--" said where they begin
    const std::size_t misplaced =
        marked ? 0 : ispctl::CountMisplacedOptions(splitting.command, ofLibrary);
    const auto end = ofLibrary.begin() + static_cast<std::ptrdiff_t>(misplaced);
    json = json || std::find(ofLibrary.begin(), end, "--json") != end;
    if (misplaced > 0 && misplaced == ofLibrary.size()) {
        own.insert(own.end(), ofLibrary.begin(), end); // the parser refuses what it does not know
        ofLibrary.clear();
    }
    splitting.ofLibrary = std::move(ofLibrary);
    own.insert(own.begin(), arguments.front());
    arguments = std::move(own);
    return json;
}

/// The commands whose failures are written as a result event with --json; the others that know the
/// option have a form of their own for it.
bool HasResultEvents(const std::vector<std::string> &arguments) {
    constexpr std::string_view kCommands[] = {"explain", "doctor", "paths"};
    return !arguments.empty() && std::find(std::begin(kCommands), std::end(kCommands),
                                           arguments.front()) != std::end(kCommands);
}

/// For the help only: `help COMMAND` is `COMMAND --help` when the parser sees it.
void AddHelp(CLI::App &app) {
    CLI::App *help = app.add_subcommand("help", "Shows the help of a command.");
    help->footer("Examples:\n  ispctl help run\n  ispctl help script check\n");
    help->add_option("COMMAND", "name of the command, and of its subcommand")->type_name("");
}

ispctl::ExitStatus Main(ispctl::Session &session, ispctl::RunOptions &runOptions) {
    CLI::App app(
        "Command-line tool of ScalerIsp, the firmware programming library for display scalers.",
        "ispctl");
    app.formatter(std::make_shared<ispctl::HelpFormatter>());
    app.footer(kFooter);
    app.set_version_flag("--version", "ispctl " ISPCTL_VERSION,
                         "print the version of ispctl and exit");
    app.require_subcommand(1);
    CLI::App *run = AddRun(app, runOptions);
    ispctl::ExitStatus status = ispctl::kExitSuccess;
    ispctl::ScriptOptions scriptOptions;
    ispctl::AddScript(app, scriptOptions, session, status);
    ispctl::EdidOptions edidOptions;
    ispctl::AddEdid(app, edidOptions, session, status);
    ispctl::doctor::AllOptions doctorOptions;
    ispctl::doctor::AddDoctor(app, doctorOptions, session, status);
    ispctl::check::CheckOptions checkOptions;
    ispctl::check::AddCheckPlugin(app, checkOptions, session, status);
    ispctl::ExplainOptions explainOptions;
    CLI::App *explain = ispctl::AddExplain(app, explainOptions, session, status);
    ispctl::SummaryOptions summaryOptions;
    ispctl::AddLog(app, summaryOptions, session, status);
    AddHelp(app);
    std::vector<std::string> arguments = ispctl::WithHelpOption(app, session.arguments);
    bool json = ispctl::AsksForJson(arguments);
    for (const Splitting &splitting :
         {Splitting{*run, runOptions.arguments}, Splitting{*explain, explainOptions.arguments}}) {
        if (!arguments.empty() && arguments.front() == splitting.command.get_name()) {
            json = CutOffLibraryArguments(splitting, arguments);
        }
    }
    session.json = json && HasResultEvents(arguments);
    try {
        // The parser expects the last one first.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError &end) {
        return ispctl::ShowParserEnd(app, arguments, end, json, session.streams);
    }
    if (!run->parsed()) {
        return status;
    }
    runOptions.json = json;
    if (runOptions.dryRun) {
        explainOptions.library = runOptions.library;
        explainOptions.virtualScaler = runOptions.virtualScaler;
        explainOptions.json = runOptions.json;
        explainOptions.arguments = runOptions.arguments;
        session.json = json;
        return ispctl::ExplainCommand(explainOptions, session);
    }
    if (session.link == nullptr) {
        return ispctl::RunCommand(runOptions, session.arguments, session.streams);
    }
    ispctl::RunLibrary(runOptions, *session.link);
    return ispctl::kExitSuccess;
}

/// The process that the user starts: every exception ends with a message and a status.
int MainOfIspctl(ispctl::Session &session) {
    ispctl::RunOptions options;
    ispctl::ExitStatus status = ispctl::kExitUsage;
    try {
        status = Main(session, options);
    } catch (const std::exception &error) {
        status = ispctl::ReportNotCalled(options.json || session.json, status, "open", error.what(),
                                         {}, session.streams);
    }
    return session.streams.Finish(status, options.json || session.json);
}

/// The library's process. Exceptions of plug-ins are not caught here: ispctl sees how the process
/// ended.
int MainOfLibraryProcess(ispctl::Session &session) {
    auto link = ispctl::ParentLink::FromArguments(session.arguments);
    if (!link) {
        return session.Fail(ispctl::kExitUsage, "this command is for internal use only");
    }
    ispctl::BecomeLibraryProcess();
    session.link = &*link;
    ispctl::RunOptions options;
    Main(session, options);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    // A failed write is handled at the write, not by a signal that would end ispctl during a run.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    if (!ispctl::EnsureStandardDescriptors()) {
        constexpr std::string_view kMessage =
            "ispctl: a standard descriptor is closed and /dev/null cannot be opened for it\n";
        ispctl::WriteAll(STDERR_FILENO, kMessage);
        return ispctl::kExitUsage;
    }
    try {
        ispctl::Session session;
        session.arguments.assign(argv + std::min(argc, 1), argv + argc);
        const auto &arguments = session.arguments;
        const bool library = !arguments.empty() && arguments.front() == ispctl::kLibraryProcess;
        return library ? MainOfLibraryProcess(session) : MainOfIspctl(session);
    } catch (const std::bad_alloc &) {
        ispctl::WriteAll(STDERR_FILENO, "ispctl: out of memory\n");
        return ispctl::kExitUsage;
    }
}
