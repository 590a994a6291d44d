#include "RunCommand.h"

#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <stdexcept>

#include "ChildProcess.h"
#include "Environment.h"
#include "FileHints.h"
#include "JsonEvents.h"
#include "LibraryRun.h"
#include "ProgressView.h"
#include "ResultInfo.h"
#include "RunLog.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// The call that the library's process is about to make.
struct ReadyCall {
    std::string library; ///< absolute path
    std::string line;
};

ReadyCall ReadyFrom(const std::string &payload) {
    const auto end = payload.find('\0');
    return {payload.substr(0, end), payload.substr(end + 1)};
}

/// Reads the first frame: only the library's process knows whether the library can be called.
/// RETURNS nothing if it cannot, after printing why.
std::optional<ReadyCall> WaitUntilReady(const LibraryRun &run, const std::optional<Frame> &first,
                                        ConsoleStreams &streams, ChildProcess &child) {
    if (first && first->kind == FrameKind::Ready) {
        return ReadyFrom(first->payload);
    }
    streams.Print(Stream::Error, run.EarlyText());
    if (first) {
        streams.PrintMessage(first->payload);
    } else {
        streams.PrintMessage(
            fmt::format("the library was not called: opening it ended its process{}",
                        DescribeStatus(child.Status().value_or(0))));
    }
    return std::nullopt;
}

void PrintNotices(const RunOptions &options, const fs::path &directory, ConsoleStreams &streams) {
    if (options.virtualScaler) {
        streams.PrintMessage("virtual scaler: no hardware is touched");
    }
    if (!IsTextOfEnvironment(directory)) {
        streams.PrintMessage(
            fmt::format("the library's directory {} cannot be expressed in the encoding of "
                        "the environment, {}: plug-ins get an empty directory; set a UTF-8 "
                        "locale, such as LC_ALL=C.UTF-8",
                        directory.string(), EnvironmentEncoding()));
    }
    std::error_code ignored;
    const auto here = fs::current_path(ignored);
    for (const std::string &hint : FileHints(options.arguments, directory, here)) {
        streams.PrintMessage(hint);
    }
}

std::optional<RunLog> OpenLog(const RunOptions &options, const ReadyCall &call) {
    std::optional<RunLog> log;
    if (!options.log.empty()) {
        log.emplace(options.log);
        log->Write("library", call.library);
        log->Write("command", call.line);
    }
    return log;
}

/// Reports incomplete output on each stream and in the log if they still work, so that it is not
/// mistaken for a success.
ExitStatus StatusOf(const RunOutcome &outcome, const std::string &problem, RunLog *log,
                    const RunOptions &options, ConsoleStreams &streams) {
    bool complete = problem.empty();
    if (!complete) {
        streams.PrintMessage("the output is incomplete: " + problem);
    }
    if (log != nullptr && !streams.IsComplete()) {
        log->OnNotice(streams.Problem());
    }
    if (log != nullptr && log->Error() != 0) {
        complete = false;
        streams.PrintMessage(fmt::format("writing the log {} failed; it is incomplete: {}",
                                         options.log, std::strerror(log->Error())));
    }
    if (outcome.end == RunEnd::Interrupted) {
        return kExitInterrupted;
    }
    return outcome.IsSuccess() && complete ? kExitSuccess : kExitFailedRun;
}

ExitStatus Run(const RunOptions &options, const ReadyCall &call, LibraryRun &run,
               ConsoleStreams &streams) {
    auto log = OpenLog(options, call);
    PrintNotices(options, fs::path(call.library).parent_path(), streams);
    JsonEvents json(streams);
    ProgressView view(streams);
    std::vector<RunObserver *> observers;
    observers.push_back(options.json ? static_cast<RunObserver *>(&json) : &view);
    if (log) {
        observers.push_back(&*log);
    }
    const RunOutcome outcome = run.Run(std::move(observers));
    return StatusOf(outcome, run.Problem(), log ? &*log : nullptr, options, streams);
}

} // namespace

ExitStatus RunCommand(const RunOptions &options, const std::vector<std::string> &arguments,
                      ConsoleStreams &streams) {
    if (options.arguments.empty()) {
        streams.PrintMessage("no arguments for the library; see ispctl run --help");
        return kExitNotRun;
    }
    const bool onePipe = options.json || ConsoleStreams::ShareOneTarget();
    ChildProcess child(arguments,
                       onePipe ? ChildProcess::Ordering::OnePipe : ChildProcess::Ordering::TwoPipes,
                       RunSignals::Stop::AtSecondInterrupt);
    LibraryRun run(child, streams);
    const auto first = run.WaitForFirstFrame();
    const auto call = WaitUntilReady(run, first, streams, child);
    return call ? Run(options, *call, run, streams) : kExitNotRun;
}

} // namespace ispctl
