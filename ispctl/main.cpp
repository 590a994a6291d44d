// ispctl, one subcommand per task. The library's arguments are split off before the option parser
// sees them, because the parser looks for its own options up to the end of the line.

#include <algorithm>
#include <csignal>
#include <exception>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>

#include "ChildProcess.h"
#include "Commands.h"
#include "ConsoleStreams.h"
#include "LibraryArguments.h"
#include "LibraryProcess.h"
#include "ParserEnd.h"
#include "RunCommand.h"
#include "Session.h"
#include "explain/ExplainCommand.h"
#include "station/RunIdentity.h"

namespace {

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

ispctl::ExitStatus Main(ispctl::Session &session, ispctl::Commands &commands) {
    ispctl::RunOptions &options = commands.runOptions;
    ispctl::ExplainOptions &explainOptions = commands.explainOptions;
    std::vector<std::string> arguments = ispctl::WithHelpOption(commands.app, session.arguments);
    bool json = ispctl::AsksForJson(arguments);
    for (const Splitting &splitting : {Splitting{*commands.run, options.arguments},
                                       Splitting{*commands.explain, explainOptions.arguments}}) {
        if (!arguments.empty() && arguments.front() == splitting.command.get_name()) {
            json = CutOffLibraryArguments(splitting, arguments);
        }
    }
    session.json = json && HasResultEvents(arguments);
    try {
        // The parser expects the last one first.
        commands.app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError &end) {
        return ispctl::ShowParserEnd(commands.app, arguments, end, json, session.streams);
    }
    if (!commands.run->parsed()) {
        return commands.status;
    }
    options.json = json;
    if (options.dryRun) {
        explainOptions.library = options.library;
        explainOptions.virtualScaler = options.virtualScaler;
        explainOptions.json = options.json;
        explainOptions.arguments = options.arguments;
        session.json = json;
        return ispctl::ExplainCommand(explainOptions, session);
    }
    if (session.link == nullptr) {
        return ispctl::RunCommand(options, session.arguments, session.streams);
    }
    ispctl::RunLibrary(options, *session.link);
    return ispctl::kExitSuccess;
}

/// The process that the user starts: every exception ends with a message and a status.
int MainOfIspctl(ispctl::Session &session) {
    ispctl::Commands commands(session);
    const bool &json = commands.runOptions.json;
    ispctl::ExitStatus status = ispctl::kExitUsage;
    try {
        status = Main(session, commands);
    } catch (const std::exception &error) {
        status = ispctl::ReportNotCalled(json || session.json, status, "open", error.what(), {},
                                         session.streams);
    }
    return session.streams.Finish(status, json || session.json);
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
    ispctl::Commands commands(session);
    ispctl::TakeRunOptions(session.arguments, commands.runOptions.station);
    Main(session, commands);
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
