// The console: one subcommand a job. A subcommand that hands arguments on cuts them off before the
// option parser sees them, because that parser looks for its own options to the end of the line.

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
#include "LibraryArguments.h"
#include "LibraryProcess.h"
#include "RunCommand.h"
#include "Session.h"
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

/// The parser's help, version and errors are texts like all others.
ispctl::ExitStatus ShowParserEnd(const CLI::App &app, const CLI::ParseError &end,
                                 ispctl::ConsoleStreams &streams) {
    std::ostringstream output;
    std::ostringstream error;
    const int status = app.exit(end, output, error);
    streams.Print(ispctl::Stream::Output, output.str());
    streams.Print(ispctl::Stream::Error, error.str());
    return status == 0 ? ispctl::kExitSuccess : ispctl::kExitNotRun;
}

ispctl::ExitStatus Main(ispctl::Session &session, ispctl::RunOptions &runOptions) {
    CLI::App app("The console of ScalerIsp, the firmware programming library of display scalers.",
                 "ispctl");
    app.set_version_flag("--version", "ispctl " ISPCTL_VERSION);
    app.require_subcommand(1);
    CLI::App *run = AddRun(app, runOptions);
    ispctl::ExitStatus status = ispctl::kExitSuccess;
    ispctl::ScriptOptions scriptOptions;
    ispctl::AddScript(app, scriptOptions, session, status);
    ispctl::EdidOptions edidOptions;
    ispctl::AddEdid(app, edidOptions, session, status);
    std::vector<std::string> arguments = session.arguments;
    if (!arguments.empty() && arguments.front() == run->get_name()) {
        std::vector<std::string> own(arguments.begin() + 1, arguments.end());
        runOptions.arguments = ispctl::SplitOffLibraryArguments(*run, own);
        own.insert(own.begin(), arguments.front());
        arguments = std::move(own);
    }
    try {
        std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError &end) {
        return ShowParserEnd(app, end, session.streams);
    }
    if (!run->parsed()) {
        return status;
    }
    if (session.link == nullptr) {
        return ispctl::RunCommand(runOptions, session.arguments, session.streams);
    }
    ispctl::RunLibrary(runOptions, *session.link);
    return ispctl::kExitSuccess;
}

/// The console itself: nothing ends it without a word.
int MainOfConsole(ispctl::Session &session) {
    ispctl::RunOptions options;
    ispctl::ExitStatus status = ispctl::kExitNotRun;
    try {
        status = Main(session, options);
    } catch (const std::exception &error) {
        session.streams.PrintMessage(error.what());
    }
    return session.streams.Finish(status, options.json);
}

/// The library's process: what a plug-in throws or ends goes through to the console.
int MainOfLibraryProcess(ispctl::Session &session) {
    auto link = ispctl::ConsoleLink::Take(session.arguments);
    if (!link) {
        return session.Fail(ispctl::kExitNotRun, "this command is for the console's own use");
    }
    ispctl::BecomeLibraryProcess();
    session.link = &*link;
    ispctl::RunOptions options;
    Main(session, options);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    // Output that cannot be written is noticed where it is written, not as a signal.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    if (!ispctl::EnsureStandardDescriptors()) {
        constexpr std::string_view kWords =
            "ispctl: a standard descriptor is closed and /dev/null cannot be opened for it\n";
        ispctl::WriteAll(STDERR_FILENO, kWords);
        return ispctl::kExitNotRun;
    }
    try {
        ispctl::Session session;
        session.arguments.assign(argv + std::min(argc, 1), argv + argc);
        const auto &arguments = session.arguments;
        const bool library = !arguments.empty() && arguments.front() == ispctl::kLibraryProcess;
        return library ? MainOfLibraryProcess(session) : MainOfConsole(session);
    } catch (const std::bad_alloc &) {
        ispctl::WriteAll(STDERR_FILENO, "ispctl: no memory\n");
        return ispctl::kExitNotRun;
    }
}
