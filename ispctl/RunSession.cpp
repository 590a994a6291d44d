#include "RunSession.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <system_error>

#include "Environment.h"
#include "JsonEvents.h"
#include "ProgressView.h"
#include "ResultInfo.h"
#include "RunLog.h"
#include "line/FindingText.h"
#include "line/ShellQuote.h"
#include "station/Backup.h"
#include "station/OriginalNames.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// Such as "/srv/fw/a.bin: 5 bytes, SHA-256 2cf2...".
std::string FileWords(const Json &file) {
    const std::string path = file["path"];
    return file.contains("sha256")
               ? fmt::format("{}: {} bytes, SHA-256 {}", path, file["size"].get<std::uint64_t>(),
                             file["sha256"].get<std::string>())
               : fmt::format("{}: {}", path, file["problem"].get<std::string>());
}

} // namespace

RunSession::RunSession(const RunOptions &options, const std::vector<std::string> &arguments,
                       ConsoleStreams &streams, ChildProcess &child, RecordedRun &recorded)
    : m_options(options), m_arguments(arguments), m_streams(streams), m_child(child),
      m_recorded(recorded), m_run(child, streams) {}

ExitStatus RunSession::Execute() {
    std::optional<Frame> frame = WaitForDecision();
    if (frame && frame->kind == FrameKind::Findings) {
        if (!IsAccepted(DecodeLineReport(frame->payload))) {
            return Refused();
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

ExitStatus RunSession::NotCalled(ExitStatus status, std::string_view stage,
                                 const std::string &reason) {
    std::string error;
    if (!m_recorded.record.FinishUncalled(status, stage, reason, error)) {
        m_streams.PrintMessage(error);
    }
    return ReportNotCalled(m_options.json, status, stage, reason, m_findings, m_streams,
                           m_recorded.ShownId());
}

std::optional<Frame> RunSession::WaitForDecision() {
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

bool RunSession::IsAccepted(LineReport report) {
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
                    FindingsText(shown, report.corrected, m_options.arguments, look));
    return std::all_of(shown.begin(), shown.end(), [](const Finding &finding) {
        return finding.severity == FindingClass::Warning;
    });
}

ExitStatus RunSession::Refused() {
    const bool isFatal =
        std::any_of(m_findings.begin(), m_findings.end(),
                    [](const Finding &finding) { return finding.severity == FindingClass::Fatal; });
    return NotCalled(kExitRefused, "check",
                     isFatal ? "refused, the library was not called"
                             : "refused, the library was not called; --allow NAME accepts single "
                               "findings, --verbatim passes the line unchecked");
}

std::string RunSession::OwnPart() const {
    std::string text = "ispctl";
    for (std::size_t i = 0; i + m_options.arguments.size() < m_arguments.size(); ++i) {
        text += " " + QuoteForShell(m_arguments[i]);
    }
    return text;
}

ExitStatus RunSession::Call(const ReadyCall &call) {
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

void RunSession::PrintNotices(const fs::path &directory) {
    if (m_options.virtualScaler) {
        m_streams.PrintMessage("virtual scaler: no hardware is touched");
    }
    for (const auto &file : m_recorded.record.Files()) {
        if (file.contains("copy")) {
            m_streams.PrintMessage("private copy of " + FileWords(file));
        }
    }
    if (!HasNameInRecords(directory)) {
        m_streams.PrintMessage(
            fmt::format("the library's directory {} cannot be expressed in the encoding of "
                        "the environment, {}: plug-ins get an empty directory; set a UTF-8 "
                        "locale, such as LC_ALL=C.UTF-8",
                        directory.string(), EnvironmentEncoding()));
    }
}

void RunSession::LogRecord(RunLog &log) const {
    for (const auto &[key, value] : m_options.station.tags) {
        log.Write("tag", key + "=" + value);
    }
    for (const auto &file : m_recorded.record.Files()) {
        log.Write("file", file["role"].get<std::string>() + " " + FileWords(file));
    }
}

ExitStatus RunSession::Report(const RunOutcome &outcome, RunObserver &view, RunLog *log) {
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

} // namespace ispctl
