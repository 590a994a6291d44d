#include "doctor/ReportView.h"

#include <fmt/format.h>

#include "JsonText.h"
#include "VisibleText.h"
#include "WrapText.h"

namespace ispctl::doctor {
namespace {

constexpr FindingClass kClasses[] = {FindingClass::Ok, FindingClass::Remark, FindingClass::Warning,
                                     FindingClass::Error};

Json JsonOf(const Finding &finding) {
    const FindingRow &row = RowOf(finding.id);
    Json object{{"section", finding.section}, {"name", row.name}, {"class", NameOf(row.severity)}};
    SetText(object, "file", finding.file);
    SetText(object, "message", MessageOf(finding));
    SetText(object, "remedy", RemedyOf(finding));
    Json &details = object["details"] = Json::array();
    for (const std::string &detail : {finding.first, finding.second}) {
        if (!detail.empty()) {
            Json escaped;
            SetText(escaped, "text", detail);
            details.push_back(escaped["text"]);
            if (escaped.contains("escaped")) {
                object["escaped"].push_back(fmt::format("details/{}", details.size() - 1));
            }
        }
    }
    return object;
}

} // namespace

void ShowFindings(const Report &report, ConsoleStreams &streams) {
    constexpr std::size_t kTextColumn = 11;
    const TextLayout layout{static_cast<std::size_t>(ConsoleStreams::Width(Stream::Output)),
                            kTextColumn};
    std::string_view section;
    for (const Finding &finding : report.Findings()) {
        if (finding.section != section) {
            section = finding.section;
            streams.Write(Stream::Output, fmt::format("{}\n", section));
        }
        const FindingRow &row = RowOf(finding.id);
        const auto visible = [&](const std::string &text) {
            return Visible(text, Layout::OneLine, streams.TheCharset());
        };
        streams.Write(Stream::Output, WrapText(visible(MessageOf(finding)), layout,
                                               fmt::format("  {:<8} ", NameOf(row.severity))));
        if (!row.remedy.empty()) {
            streams.Write(Stream::Output, WrapText(visible(RemedyOf(finding)), layout,
                                                   std::string(kTextColumn, ' ') + "remedy: "));
        }
    }
}

std::string CountsOf(const Report &report) {
    return fmt::format("{} errors, {} warnings, {} remarks", report.Count(FindingClass::Error),
                       report.Count(FindingClass::Warning), report.Count(FindingClass::Remark));
}

void AddFindings(const Report &report, Json &document) {
    for (const FindingClass severity : kClasses) {
        document["counts"][NameOf(severity)] = report.Count(severity);
    }
    Json &findings = document["findings"] = Json::array();
    for (const Finding &finding : report.Findings()) {
        findings.push_back(JsonOf(finding));
    }
}

void ShowText(const Report &report, ConsoleStreams &streams) {
    ShowFindings(report, streams);
    streams.Write(Stream::Output, CountsOf(report) + "\n");
}

void ShowJson(const Places &places, const Report &report, ExitStatus status,
              ConsoleStreams &streams) {
    Json document;
    SetText(document, "library", places.library.string());
    SetText(document, "directory", places.directory.string());
    document["status"] = static_cast<int>(status);
    AddFindings(report, document);
    streams.Write(Stream::Output, JsonDocument(document, Charset::Ascii));
}

} // namespace ispctl::doctor
