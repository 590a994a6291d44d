#include "RunCommand.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <system_error>

#include "ChildProcess.h"
#include "Environment.h"
#include "JsonEvents.h"
#include "LibraryRun.h"
#include "ProgressView.h"
#include "ResultInfo.h"
#include "RunLog.h"
#include "line/FindingText.h"
#include "line/LineReport.h"
#include "line/ShellQuote.h"
#include "station/Backup.h"
#include "station/OriginalNames.h"
#include "station/PrivateCopies.h"
#include "station/RunIdentity.h"
#include "station/RunRecord.h"
#include "station/StationRules.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// What distinguishes a run from others, and what is kept of it.
struct RecordedRun {
    std::string id;
    RunRecord record;
    fs::path copies;       ///< directory for private copies; empty: none are made
    bool isKept;           ///< in a log or a station file
    bool isCalled = false; ///< the library, by now

    /// For results; empty if nobody could look the run up.
    std::string ShownId() const {
        return isKept ? id : "";
    }
};

/// Such as "/srv/fw/a.bin: 5 bytes, SHA-256 2cf2...".
std::string FileWords(const Json &file) {
    const std::string path = file["path"];
    return file.contains("sha256")
               ? fmt::format("{}: {} bytes, SHA-256 {}", path, file["size"].get<std::uint64_t>(),
                             file["sha256"].get<std::string>())
               : fmt::format("{}: {}", path, file["problem"].get<std::string>());
}

/// One `ispctl run`, from the checks to the exit status.
class RunSession {
  public:
    RunSession(const RunOptions &options, const std::vector<std::string> &arguments,
               ConsoleStreams &streams, ChildProcess &child, RecordedRun &recorded)
        : m_options(options), m_arguments(arguments), m_streams(streams), m_child(child),
          m_recorded(recorded), m_run(child, streams) {}

    ExitStatus Execute() {
        std::optional<Frame> frame = WaitForDecision();
        if (frame && frame->kind == FrameKind::Findings) {
            if (!IsAccepted(DecodeLineReport(frame->payload))) {
                const bool fatal =
                    std::any_of(m_findings.begin(), m_findings.end(), [](const Finding &finding) {
                        return finding.severity == FindingClass::Fatal;
                    });
                return NotCalled(kExitRefused, "check",
                                 fatal
                                     ? "refused, the library was not called"
                                     : "refused, the library was not called; --allow NAME accepts "
                                       "single findings, --verbatim passes the line unchecked");
            }
            m_child.Answer();
            frame = WaitForDecision();
        }
        if (m_run.WasStoppedBeforeCall()) {
            return NotCalled(kExitInterrupted, "check", "stopped before the library was called");
        }
        if (!frame) {
            m_streams.Print(Stream::Error, m_run.EarlyText());
            return NotCalled(kExitUsage, "open",
                             "the library was not called: opening it ended its process" +
                                 DescribeStatus(m_child.Status().value_or(0)));
        }
        switch (frame->kind) {
        case FrameKind::Ready:
            return Call(DecodeReadyCall(frame->payload));
        case FrameKind::Unpassable:
            return NotCalled(kExitRefused, "check", frame->payload);
        case FrameKind::Refused: {
            const Refusal refusal = DecodeRefusal(frame->payload);
            return NotCalled(static_cast<ExitStatus>(refusal.status), refusal.stage, refusal.text);
        }
        default:
            m_streams.Print(Stream::Error, m_run.EarlyText());
            return NotCalled(kExitUsage, "open", frame->payload);
        }
    }

  private:
    ExitStatus NotCalled(ExitStatus status, std::string_view stage, const std::string &reason) {
        std::string error;
        if (!m_recorded.record.FinishUncalled(status, stage, reason, error)) {
            m_streams.PrintMessage(error);
        }
        return ReportNotCalled(m_options.json, status, stage, reason, m_findings, m_streams,
                               m_recorded.ShownId());
    }

    /// Waits for a frame that is more than news about the preparation.
    std::optional<Frame> WaitForDecision() {
        std::optional<Frame> frame;
        while ((frame = m_run.WaitForFrame())) {
            if (frame->kind == FrameKind::Notice) {
                m_streams.PrintMessage(frame->payload);
            } else if (frame->kind == FrameKind::Files) {
                m_recorded.record.SetFiles(Json::parse(frame->payload));
            } else {
                return frame;
            }
            m_child.Answer();
        }
        return frame;
    }

    /// Shows the findings. RETURNS whether none of them stops the run.
    bool IsAccepted(LineReport report) {
        if (!report.notice.empty()) {
            m_streams.PrintMessage(report.notice);
        }
        m_findings = std::move(report.findings);
        std::vector<Finding> shown = m_findings;
        std::erase_if(shown, [this](const Finding &finding) {
            return std::find(m_options.allowed.begin(), m_options.allowed.end(), finding.name) !=
                   m_options.allowed.end();
        });
        const FindingLook look{OwnPart(),
                               static_cast<std::size_t>(ConsoleStreams::Width(Stream::Error)),
                               m_streams.TheCharset()};
        m_streams.Write(Stream::Error,
                        FindingsText(shown, report.mended, m_options.arguments, look));
        return std::all_of(shown.begin(), shown.end(), [](const Finding &finding) {
            return finding.severity == FindingClass::Warning;
        });
    }

    /// What stands before ARGS in a corrected line: "ispctl run --virtual".
    std::string OwnPart() const {
        std::string text = "ispctl";
        for (std::size_t i = 0; i + m_options.arguments.size() < m_arguments.size(); ++i) {
            text += " " + QuoteForShell(m_arguments[i]);
        }
        return text;
    }

    ExitStatus Call(const ReadyCall &call) {
        const fs::path directory = fs::path(call.library).parent_path();
        std::optional<RunLog> log;
        if (!m_options.log.empty()) {
            try {
                log.emplace(m_options.log, m_recorded.id);
            } catch (const std::system_error &error) {
                return NotCalled(kExitFileError, "log", error.what());
            }
            log->Write("library", call.library);
            log->Write("command", call.line);
            LogRecord(*log);
        }
        m_recorded.record.SetLibrary(call.library);
        PrintNotices(directory);
        JsonEvents json(m_streams);
        ProgressView progress(m_streams, m_options.verbatim);
        RunObserver &view = m_options.json ? static_cast<RunObserver &>(json) : progress;
        std::vector<RunObserver *> observers{&view};
        if (log) {
            observers.push_back(&*log);
        }
        OriginalNames names(m_recorded.record.Files(), std::move(observers));
        m_recorded.isCalled = true;
        RunOutcome outcome = m_run.Run({&names});
        if (outcome.inBackup) {
            RemovePartialBackups(m_options.station.backup, m_recorded.id, outcome.backups);
        }
        outcome.detail = names.Replace(std::move(outcome.detail));
        outcome.run = m_recorded.ShownId();
        outcome.banks = call.banks;
        outcome.findings = m_findings;
        if (outcome.code && !outcome.fromLibrary) {
            outcome.pluginWords = FindPluginCode(directory, *outcome.code);
        }
        return Report(outcome, view, log ? &*log : nullptr);
    }

    void PrintNotices(const fs::path &directory) {
        if (m_options.virtualScaler) {
            m_streams.PrintMessage("virtual scaler: no hardware is touched");
        }
        for (const auto &file : m_recorded.record.Files()) {
            if (file.contains("copy")) {
                m_streams.PrintMessage("private copy of " + FileWords(file));
            }
        }
        if (!IsTextOfEnvironment(directory)) {
            m_streams.PrintMessage(
                fmt::format("the library's directory {} cannot be expressed in the encoding of "
                            "the environment, {}: plug-ins get an empty directory; set a UTF-8 "
                            "locale, such as LC_ALL=C.UTF-8",
                            directory.string(), EnvironmentEncoding()));
        }
    }

    void LogRecord(RunLog &log) const {
        for (const auto &[key, value] : m_options.station.tags) {
            log.Write("tag", key + "=" + value);
        }
        for (const auto &file : m_recorded.record.Files()) {
            log.Write("file", file["role"].get<std::string>() + " " + FileWords(file));
        }
    }

    /// The log first, so that what is missing there is part of the status that the view shows.
    ExitStatus Report(const RunOutcome &outcome, RunObserver &view, RunLog *log) {
        ExitStatus status = StatusOfOutcome(outcome);
        const auto fail = [&](const std::string &problem) {
            m_streams.PrintMessage(problem);
            status = status == kExitSuccess ? kExitFileError : status;
        };
        if (log != nullptr) {
            m_run.NotifyEnd(*log, outcome, status);
            if (!m_streams.IsComplete()) {
                log->OnNotice(m_streams.Problem());
            }
            if (log->Error() != 0) {
                fail(fmt::format("writing the log {} failed; it is incomplete: {}", m_options.log,
                                 std::strerror(log->Error())));
            }
        }
        if (!m_run.Problem().empty()) {
            fail("the output is incomplete: " + m_run.Problem());
        }
        std::string error;
        if (!m_recorded.record.Finish(outcome, status, error)) {
            fail(error);
        }
        const std::string problem = m_run.Problem();
        m_run.NotifyEnd(view, outcome, status);
        if (problem.empty() && !m_run.Problem().empty()) {
            fail("the output is incomplete: " + m_run.Problem());
        }
        return status;
    }

    const RunOptions &m_options;
    const std::vector<std::string> &m_arguments; ///< of this program
    ConsoleStreams &m_streams;
    ChildProcess &m_child;
    RecordedRun &m_recorded;
    LibraryRun m_run;
    std::vector<Finding> m_findings;
};

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
                         isCopied ? PrivatePath(id) : fs::path(),
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
        recorded.record.FinishUncalled(kExitUsage, recorded.isCalled ? "call" : "open",
                                       reason.what(), error);
        throw;
    }
}

} // namespace ispctl
