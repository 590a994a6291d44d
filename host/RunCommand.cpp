#include "RunCommand.h"

#include <fmt/format.h>
#include <optional>

#include "CommandLine.h"
#include "ConsoleStreams.h"
#include "FileHints.h"
#include "Interrupt.h"
#include "JsonEvents.h"
#include "OutputCapture.h"
#include "Places.h"
#include "ProgressView.h"
#include "RunEvents.h"
#include "RunLog.h"
#include "ScalerLibrary.h"
#include "Utf8.h"

namespace ispctl {
namespace {

void Say(const ConsoleStreams &streams, std::string_view text) {
    streams.Write(Stream::Error, fmt::format("ispctl: {}\n", text));
}

std::optional<ScalerLibrary> OpenLibrary(const RunOptions &options, std::string &error) {
    if (!options.library.empty()) {
        return ScalerLibrary::Open(options.library, error);
    }
    return ScalerLibrary::Open(options.virtualScaler ? VirtualLibrary() : InstalledLibrary(),
                               error);
}

std::optional<RunLog> OpenLog(const RunOptions &options, const ScalerLibrary &library,
                              const std::wstring &line) {
    std::optional<RunLog> log;
    if (!options.log.empty()) {
        log.emplace(options.log);
        log->Write("library", library.Path().string());
        log->Write("command", EscapeWide(line).text);
    }
    return log;
}

void SayBeforehand(const RunOptions &options, const ScalerLibrary &library,
                   const ConsoleStreams &streams) {
    if (options.virtualScaler) {
        Say(streams, "virtual scaler: no hardware is touched");
    }
    std::error_code ignored;
    const auto here = std::filesystem::current_path(ignored);
    for (const std::string &hint : FileHints(options.arguments, library.Folder(), here)) {
        Say(streams, hint);
    }
}

int Run(const RunOptions &options, const ScalerLibrary &library, const std::wstring &line,
        RunLog *log, const ConsoleStreams &streams) {
    JsonEvents json(streams);
    ProgressView view(streams);
    std::vector<RunObserver *> observers;
    observers.push_back(options.json ? static_cast<RunObserver *>(&json) : &view);
    if (log != nullptr) {
        observers.push_back(log);
    }
    // Without a reader of its own the library's output is left alone: nothing can get lost then.
    std::optional<OutputCapture> capture;
    if (options.json || log != nullptr || view.HasBar()) {
        const bool one = options.json || streams.AreOne();
        capture.emplace(streams,
                        one ? OutputCapture::Ordering::OnePipe : OutputCapture::Ordering::TwoPipes);
    }
    return RunEvents(std::move(observers)).Run(library, line, capture ? &*capture : nullptr);
}

} // namespace

ExitStatus RunCommand(const RunOptions &options) {
    const ConsoleStreams streams;
    if (options.arguments.empty()) {
        Say(streams, "no arguments for the library; see ispctl run --help");
        return kExitWrongUse;
    }
    std::string error;
    const auto library = OpenLibrary(options, error);
    if (!library) {
        Say(streams, error);
        return kExitWrongUse;
    }
    const CommandLine line = BuildCommandLine(
        options.arguments, [&](const std::string &l) { return library->Split(l); });
    if (!line.IsGood()) {
        Say(streams, line.refusal);
        return kExitWrongUse;
    }
    auto log = OpenLog(options, *library, line.line);
    if (log && !log->IsGood()) {
        Say(streams, fmt::format("the log {} cannot be written", options.log));
        return kExitWrongUse;
    }
    SayBeforehand(options, *library, streams);
    const InterruptGuard guard(streams);
    const int result = Run(options, *library, line.line, log ? &*log : nullptr, streams);
    if (log && !log->IsGood()) {
        Say(streams, fmt::format("the log {} is not complete", options.log));
    }
    return result == 0 ? kExitSuccess : kExitFailedRun;
}

} // namespace ispctl
