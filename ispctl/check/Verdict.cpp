#include "check/Verdict.h"

#include <algorithm>
#include <fmt/format.h>
#include <initializer_list>

#include "doctor/ReportView.h"

namespace ispctl::check {
namespace {

using doctor::Finding;
using doctor::FindingClass;
using doctor::FindingId;
using doctor::Report;

bool HasOneOf(const Report &report, std::initializer_list<FindingId> ids) {
    const auto &all = report.Findings();
    return std::any_of(all.begin(), all.end(), [&](const Finding &finding) {
        return std::find(ids.begin(), ids.end(), finding.id) != ids.end();
    });
}

ExitStatus StatusOf(const Report &report) {
    if (HasOneOf(report,
                 {FindingId::FileMissing, FindingId::PluginUnreadable, FindingId::PluginNotFile})) {
        return kExitFileError;
    }
    if (HasOneOf(report, {FindingId::CallCrashes, FindingId::CallExits, FindingId::PluginEnds})) {
        return kExitPluginEnded;
    }
    if (report.HasError("file") || report.HasError("functions")) {
        return kExitNoPlugin;
    }
    return report.Count(FindingClass::Error) > 0     ? kExitFailed
           : report.Count(FindingClass::Warning) > 0 ? kExitFindings
                                                     : kExitSuccess;
}

const char *WordOf(ExitStatus status) {
    return status == kExitSuccess ? "passed" : status == kExitFindings ? "warnings" : "failed";
}

} // namespace

ExitStatus ShowVerdict(const Verdict &verdict, Session &session) {
    const Report &report = verdict.report;
    const ExitStatus status = StatusOf(report);
    if (report.HasError("file")) {
        const Finding &finding = report.Findings().back();
        return session.Fail(status, MessageOf(finding) + ": " + RemedyOf(finding));
    }
    doctor::ShowFindings(report, session.streams);
    session.streams.Print(Stream::Output, fmt::format("{}: {} ({})\n", verdict.file, WordOf(status),
                                                      doctor::CountsOf(report)));
    return status;
}

ExitStatus ShowVerdictJson(const Verdict &verdict, ConsoleStreams &streams) {
    const ExitStatus status = StatusOf(verdict.report);
    Json document;
    SetText(document, "file", verdict.file);
    document["kind"] = verdict.kind.empty() ? Json() : Json(verdict.kind);
    document["called"] = verdict.called;
    document["verdict"] = WordOf(status);
    document["status"] = static_cast<int>(status);
    doctor::AddFindings(verdict.report, document);
    streams.Write(Stream::Output, JsonDocument(document, Charset::Ascii));
    return status;
}

} // namespace ispctl::check
