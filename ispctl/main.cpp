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
#include "JsonEvents.h"
#include "LibraryArguments.h"
#include "LibraryProcess.h"
#include "ParserHint.h"
#include "RunCommand.h"
#include "Session.h"
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

/// If the command is this one, moves the library's part of the arguments to another list.
/// RETURNS whether the command's own part asks for JSON, which counts also if the parser fails on
/// another option.
bool CutOffLibraryArguments(const CLI::App &command, std::vector<std::string> &arguments,
                            std::vector<std::string> &ofLibrary) {
    if (arguments.empty() || arguments.front() != command.get_name()) {
        return false;
    }
    std::vector<std::string> own(arguments.begin() + 1, arguments.end());
    ofLibrary = ispctl::SplitOffLibraryArguments(command, own);
    const bool json = std::find(own.begin(), own.end(), "--json") != own.end();
    own.insert(own.begin(), arguments.front());
    arguments = std::move(own);
    return json;
}

/// Prints the parser's help, version or error through the streams, so that a failed write is
/// noticed.
ispctl::ExitStatus ShowParserEnd(const CLI::App &app, const std::vector<std::string> &arguments,
                                 const CLI::ParseError &end, bool json,
                                 ispctl::ConsoleStreams &streams) {
    std::ostringstream output;
    std::ostringstream error;
    if (app.exit(end, output, error) == 0) {
        streams.Print(ispctl::Stream::Output, output.str());
        return ispctl::kExitSuccess;
    }
    streams.Print(ispctl::Stream::Error, error.str());
    if (const std::string hint = ispctl::NearestArgument(app, arguments); !hint.empty()) {
        streams.PrintMessage(hint);
    }
    if (json) {
        ispctl::JsonEvents::WriteNotCalled(streams, ispctl::kExitUsage, "usage", end.what(), {});
    }
    return ispctl::kExitUsage;
}

ispctl::ExitStatus Main(ispctl::Session &session, ispctl::RunOptions &runOptions) {
    CLI::App app(
        "Command-line tool of ScalerIsp, the firmware programming library for display scalers.",
        "ispctl");
    app.set_version_flag("--version", "ispctl " ISPCTL_VERSION);
    app.require_subcommand(1);
    CLI::App *run = AddRun(app, runOptions);
    ispctl::ExitStatus status = ispctl::kExitSuccess;
    ispctl::ScriptOptions scriptOptions;
    ispctl::AddScript(app, scriptOptions, session, status);
    ispctl::EdidOptions edidOptions;
    ispctl::AddEdid(app, edidOptions, session, status);
    ispctl::doctor::AllOptions doctorOptions;
    ispctl::doctor::AddDoctor(app, doctorOptions, session, status);
    ispctl::ExplainOptions explainOptions;
    CLI::App *explain = ispctl::AddExplain(app, explainOptions, session, status);
    ispctl::SummaryOptions summaryOptions;
    ispctl::AddLog(app, summaryOptions, session, status);
    std::vector<std::string> arguments = session.arguments;
    const bool json = CutOffLibraryArguments(*run, arguments, runOptions.arguments);
    CutOffLibraryArguments(*explain, arguments, explainOptions.arguments);
    try {
        // The parser expects the last one first.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError &end) {
        return ShowParserEnd(app, arguments, end, json, session.streams);
    }
    if (!run->parsed()) {
        return status;
    }
    if (runOptions.dryRun) {
        explainOptions.library = runOptions.library;
        explainOptions.virtualScaler = runOptions.virtualScaler;
        explainOptions.json = runOptions.json;
        explainOptions.arguments = runOptions.arguments;
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
        status = ispctl::ReportNotCalled(options.json, status, "open", error.what(), {},
                                         session.streams);
    }
    return session.streams.Finish(status, options.json);
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
