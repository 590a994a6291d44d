#include "RunCommand.h"

#include <filesystem>

#include "ChildProcess.h"
#include "JsonEvents.h"
#include "RunSession.h"
#include "station/PrivateCopies.h"
#include "station/RunIdentity.h"
#include "station/StationRules.h"

namespace ispctl {
namespace {

/// The process makes the same decisions from the same options, and gets what only ispctl can
/// choose.
std::vector<std::string> ArgumentsOfLibraryProcess(const std::vector<std::string> &arguments,
                                                   const RecordedRun &recorded) {
    auto all = WithRunOption(arguments, kRunIdOption, recorded.id);
    return recorded.copies.empty()
               ? all
               : WithRunOption(std::move(all), kPrivateDirectoryOption, recorded.copies.string());
}

} // namespace

ExitStatus ReportNotCalled(bool json, ExitStatus status, std::string_view stage,
                           const std::string &reason, const std::vector<Finding> &findings,
                           ConsoleStreams &streams, std::string_view run) {
    streams.PrintMessage(reason);
    if (json) {
        JsonEvents::WriteNotCalled(streams, status, stage, reason, findings, run);
    }
    return status;
}

ExitStatus RunCommand(const RunOptions &options, const std::vector<std::string> &arguments,
                      ConsoleStreams &streams) {
    if (options.arguments.empty()) {
        return ReportNotCalled(options.json, kExitUsage, "usage",
                               "no arguments for the library; see ispctl run --help", {}, streams);
    }
    if (const std::string error = StationUsageError(options); !error.empty()) {
        return ReportNotCalled(options.json, kExitUsage, "usage", error, {}, streams);
    }
    const std::string id = NewRunId();
    const bool isCopied = WantsPrivateCopies(options.station, options.verbatim, options.arguments);
    RecordedRun recorded{id,
                         {options.station, id, arguments},
                         isCopied ? PrivatePath(id) : std::filesystem::path(),
                         !options.log.empty() || !options.station.file.empty()};
    std::string error;
    if (!recorded.record.Open(error)) {
        return ReportNotCalled(options.json, kExitFileError, "station", error, {}, streams);
    }
    try {
        const PrivateDirectory copies(recorded.copies);
        const bool onePipe = options.json || ConsoleStreams::ShareOneTarget();
        ChildProcess child(ArgumentsOfLibraryProcess(arguments, recorded),
                           onePipe ? ChildProcess::Ordering::OnePipe
                                   : ChildProcess::Ordering::TwoPipes,
                           RunSignals::Stop::AtSecondInterrupt);
        const ExitStatus status =
            RunSession(options, arguments, streams, child, recorded).Execute();
        copies.Remove(); // while the signals are still handled
        return status;
    } catch (const std::exception &reason) {
        if (!recorded.isCalled) {
            recorded.record.FinishUncalled(kExitUsage, "open", reason.what(), error);
            throw;
        }
        const std::string words = std::string("failed after the library was called: ") +
                                  reason.what() + "; the state of the device is unknown";
        recorded.record.FinishUncalled(kExitFailed, "call", words, error);
        return ReportNotCalled(options.json, kExitFailed, "call", words, {}, streams,
                               recorded.ShownId());
    }
}

} // namespace ispctl
