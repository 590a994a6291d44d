#include "LibraryProcess.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <stdexcept>
#include <unistd.h>

#include "CommandLine.h"
#include "ConsoleStreams.h"
#include "FailureDetail.h"
#include "ImageWatch.h"
#include "LibraryParser.h"
#include "LibraryPaths.h"
#include "Pipe.h"
#include "ScalerLibrary.h"
#include "Utf8.h"
#include "line/CheckLine.h"
#include "line/CheckPassable.h"
#include "line/LineReport.h"
#include "line/NamedFile.h"
#include "station/BackupCall.h"
#include "station/RunPreparation.h"

namespace ispctl {
namespace {

ParentLink *g_link = nullptr; // the library's callbacks have no context argument

int DescriptorFrom(const std::string &argument) {
    int number = -1;
    std::from_chars(argument.data(), argument.data() + argument.size(), number);
    return number;
}

std::optional<ScalerLibrary> OpenLibrary(const RunOptions &options, std::string &error) {
    if (!options.library.empty()) {
        return ScalerLibrary::Open(options.library, error);
    }
    return ScalerLibrary::Open(
        options.virtualScaler ? VirtualLibraryPath() : InstalledLibraryPath(), error);
}

/// What the library's process knows before the call.
struct Call {
    ScalerLibrary library;
    std::wstring line;
    std::shared_ptr<const Records> records; ///< null if the library lacks its parser
    LineContext context;
};

/// Reports why the line cannot be passed: first with the argument that is the reason.
void ReportUnpassable(const RunOptions &options, const std::string &error, ParentLink &link) {
    const LineReport report{"", CheckPassable(options.arguments, error), {}};
    if (options.verbatim || link.Send(FrameKind::Findings, EncodeLineReport(report, kMaxFrame))) {
        link.Send(FrameKind::Unpassable, error.substr(0, kMaxFrame));
    }
}

CommandLine BuildLine(const std::vector<std::string> &arguments, const ScalerLibrary &library) {
    return BuildCommandLine(arguments, [&](const std::string &l) { return library.Split(l); });
}

/// RETURNS nothing if the library cannot be called, after reporting why.
std::optional<Call> Prepare(const RunOptions &options, ParentLink &link) {
    std::string error;
    auto library = OpenLibrary(options, error);
    if (!library) {
        link.Send(FrameKind::Unopened, error.substr(0, kMaxFrame));
        return std::nullopt;
    }
    CommandLine line = BuildLine(options.arguments, *library);
    if (!line.IsValid()) {
        ReportUnpassable(options, line.error, link);
        return std::nullopt;
    }
    return Call{std::move(*library), std::move(line.line), nullptr, {}};
}

/// Checks the line with the library's own parser. RETURNS whether ispctl wants to continue.
bool CheckAndReport(const RunOptions &options, Call &call, ParentLink &link) {
    LineReport report;
    std::error_code ignored;
    LineContext &context = call.context;
    context.libraryDirectory = call.library.Directory();
    context.callerDirectory = std::filesystem::current_path(ignored);
    context.hasPrivateCopies = !options.station.privateDirectory.empty();
    std::string missing;
    const auto parser = LibraryParser::Find(call.library, missing);
    if (parser) {
        context.parse = [parser, &options, &call](const std::vector<std::string> &arguments) {
            ParsedLine parsed = parser->Parse(arguments);
            if (arguments == options.arguments) {
                call.records = parsed.records;
            }
            return parsed;
        };
    } else {
        report.notice = "the library does not offer its parser (" + missing +
                        "), so the command line is checked in part only";
    }
    if (options.verbatim) {
        return true; // not even parsed: a pipe that is named as a file would be opened for it
    }
    report.findings = CheckLine(options.arguments, context);
    report.corrected = CorrectLine(options.arguments, report.findings, options.allowed, context);
    return link.Send(FrameKind::Findings, EncodeLineReport(report, kMaxFrame));
}

/// What the library would wait for when it loads its plug-ins; empty: nothing.
std::string PluginThatBlocks(const std::filesystem::path &directory) {
    for (const char *name : {"PlugIn/libIsp.dylib", "libSignVerify.dylib"}) {
        std::error_code ignored;
        const auto status = std::filesystem::status(directory / name, ignored);
        if (std::filesystem::is_fifo(status)) {
            return fmt::format("{} is {}, not a plug-in: put the plug-in there",
                               (directory / name).string(), KindOf(status));
        }
    }
    return "";
}

std::vector<unsigned> ProgrammedBanks(const Records *records) {
    std::vector<unsigned> banks;
    if (records != nullptr) {
        const auto &map = records->command.stMapFw;
        const std::size_t count = std::min<std::size_t>(map.ulFwCount, SCALER_ISP_MAX_BANKS);
        banks.assign(map.ulTargetBank, map.ulTargetBank + count);
    }
    return banks;
}

// No exception of this program may pass through the stack frames of a plug-in.
void OnProgress(int percent) {
    try {
        g_link->Send(FrameKind::Progress, BytesOf(percent));
    } catch (const std::exception &) {
    }
}

// The length is limited before anything is copied: a plug-in may pass a string without an end.
void OnMessage(wchar_t *text) {
    try {
        const std::size_t length = text == nullptr ? 0 : ::wcsnlen(text, kMaxMessage + 1);
        std::wstring message(text != nullptr ? text : L"", std::min(length, kMaxMessage));
        if (length > kMaxMessage) {
            message += L" [truncated: a message has at most " + std::to_wstring(kMaxMessage) +
                       L" characters]";
        }
        g_link->Send(FrameKind::Message, {reinterpret_cast<const char *>(message.data()),
                                          message.size() * sizeof(wchar_t)});
    } catch (const std::exception &) {
    }
}

/// The reason for a code must never hide the code: if it cannot be found out, there is none.
ResultOrigin OriginIfFound(const RunResult &result, const ScalerLibrary &library,
                           const Records *records) {
    try {
        return OriginOf(result.code, library.Directory(), records, result.pluginLoaded != 0);
    } catch (const std::exception &) {
        return {};
    }
}

/// Calls the library, and finds out who formed its result.
JudgedResult RunAndClassify(const ScalerLibrary &library, const std::wstring &line,
                            const Records *records) {
    const ImageWatch watch;
    JudgedResult judged;
    judged.result.code = library.Run(line, OnProgress, OnMessage);
    judged.result.pluginLoaded = watch.MayHaveLoadedPlugin() ? 1 : 0;
    ResultOrigin origin = OriginIfFound(judged.result, library, records);
    judged.result.fromLibrary = origin.fromLibrary ? 1 : 0;
    judged.result.deviceUntouched = origin.deviceUntouched ? 1 : 0;
    if (origin.nothingCalled) {
        judged.result.pluginLoaded = 0; // or only until the loader found out what it lacks
    }
    judged.detail = std::move(origin.detail);
    return judged;
}

/// RETURNS false if the library must not be called.
bool AskToStart(const Call &call, const Records *records, ParentLink &link) {
    const std::string problem = PluginThatBlocks(call.context.libraryDirectory);
    if (!problem.empty()) {
        link.Send(FrameKind::Refused, EncodeRefusal({kExitNoPlugin, "load", problem}));
        return false;
    }
    return link.Send(FrameKind::Ready,
                     EncodeReadyCall({call.library.Path().string(), EscapeWide(call.line).text,
                                      ProgrammedBanks(records)}));
}

/// A plug-in may have used up the memory; the code of a call that was made must not be lost for it.
void SendResult(const JudgedResult &judged, ParentLink &link) {
    std::string payload;
    try {
        payload = std::string(BytesOf(judged.result)) + judged.detail.substr(0, kMaxMessage);
    } catch (const std::bad_alloc &) { // without the reason
    }
    link.Send(FrameKind::Result, payload.empty() ? BytesOf(judged.result) : payload);
}

} // namespace

std::unique_ptr<ParentLink> ParentLink::FromArguments(std::vector<std::string> &arguments) {
    constexpr std::size_t kLinkArguments = 3;
    const bool complete = arguments.size() >= kLinkArguments;
    const int send = complete ? DescriptorFrom(arguments[1]) : -1;
    const int receive = complete ? DescriptorFrom(arguments[2]) : -1;
    if (send <= STDERR_FILENO || receive <= STDERR_FILENO || ::fcntl(send, F_GETFD) < 0 ||
        ::fcntl(receive, F_GETFD) < 0) {
        return nullptr;
    }
    SetInherited(send, false);
    SetInherited(receive, false);
    arguments.erase(arguments.begin(), arguments.begin() + kLinkArguments);
    return std::make_unique<ParentLink>(send, receive);
}

bool ParentLink::Send(FrameKind kind, std::string_view payload) {
    const std::lock_guard lock(m_mutex);
    const auto head = FrameHead(kind, payload.size());
    char answer = 0;
    return WriteAll(m_send, {head.data(), head.size()}) == 0 && WriteAll(m_send, payload) == 0 &&
           ReadExactly(m_receive, &answer, 1);
}

void BecomeLibraryProcess() {
    ::signal(SIGPIPE, SIG_IGN);
    // Library and plug-ins write through stdio. Without a buffer their text is in the pipe at once,
    // so its position among the callbacks is known and a crash loses nothing.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
}

void RunLibrary(const RunOptions &options, ParentLink &link) {
    std::optional<Call> call;
    std::optional<RunPreparation> preparation;
    CommandLine line; // as prepared: with the paths of private copies
    try {
        call = Prepare(options, link);
        if (!call || !CheckAndReport(options, *call, link)) {
            return; // nothing was done
        }
        preparation = PrepareRun(options, call->library.Path(), call->context, call->records, link);
        if (!preparation) {
            return; // nothing was done
        }
        line = BuildLine(preparation->arguments, call->library);
        if (!line.IsValid()) {
            link.Send(FrameKind::Unpassable, line.error.substr(0, kMaxFrame));
            return; // nothing was done
        }
        if (!AskToStart(*call, preparation->records.get(), link)) {
            return; // nothing was done
        }
    } catch (const std::exception &error) {
        link.Send(FrameKind::Unopened, error.what());
        return;
    }
    g_link = &link;
    const LibraryCall runLine = [&](const std::wstring &text, const Records *ofText) {
        return RunAndClassify(call->library, text, ofText);
    };
    auto judged = BackUp(preparation->backups, options.arguments, call->library, call->context,
                         runLine, link);
    if (!judged) {
        judged = runLine(line.line, preparation->records.get());
    }
    SendResult(*judged, link);
}

} // namespace ispctl
