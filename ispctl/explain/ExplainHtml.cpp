#include "explain/ExplainHtml.h"

#include <fmt/format.h>

#include "explain/ExplainText.h"
#include "explain/FlashSvg.h"
#include "explain/XmlText.h"
#include "line/FindingText.h"

namespace ispctl {
namespace {

// The policy is for whoever opens the page: even if a file name got through as markup, nothing
// would run and nothing would be fetched.
constexpr std::string_view kStart = R"(<!DOCTYPE html>
<html lang="en" xmlns="http://www.w3.org/1999/xhtml">
<head>
<meta charset="utf-8"/>
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
<title>ispctl explain</title>
<style>
body { font: 15px/1.45 sans-serif; color: #111; background: #fff; max-width: 60em; margin: 0 auto; padding: 1em; }
h1 { font-size: 1.4em; } h2 { font-size: 1.15em; border-bottom: 1px solid #999; margin-top: 1.6em; }
pre, code, td { font-family: monospace; overflow-wrap: anywhere; white-space: pre-wrap; }
pre { background: #f2f2f2; padding: .6em; font-size: .8em; }
table { border-collapse: collapse; width: 100%; font-size: .9em; }
td, th { text-align: left; vertical-align: top; border-bottom: 1px solid #ddd; padding: .15em .6em .15em 0; }
td:nth-child(2) { white-space: nowrap; overflow-wrap: normal; }
svg { display: block; width: 100%; max-width: 40em; height: auto; }
li { margin-bottom: .5em; overflow-wrap: anywhere; } li ul { margin-top: .2em; font-size: .9em; }
.fatal, .error { border-left: .3em solid #a00; } .warning { border-left: .3em solid #c80; } strong.error { border: 0; color: #a00; }
.key { display: inline-block; width: 1.5em; text-align: center; border: 1px solid #999; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
svg { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
@media (max-width: 40em) {
  thead { display: none; }
  td { display: block; border: 0; padding: 0 0 0 1em; }
  td:first-child { padding: .4em 0 0 0; border-top: 1px solid #ddd; }
}
@media print { body { max-width: none; padding: 0; font-size: 11px; } pre { border: 1px solid #999; } svg, tr, li { break-inside: avoid; } }
</style>
</head>
<body>
)";

// On a narrow screen, too, the marks must stay below the word that they mark.
constexpr std::size_t kFindingColumns = 42;

std::string Element(std::string_view name, std::string_view text) {
    return fmt::format("<{0}>{1}</{0}>", name, XmlText(text));
}

/// Text whose lines are its layout.
std::string XmlLines(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        lines += (lines.empty() ? "" : "\n") + XmlText(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::string Row(std::initializer_list<std::string> cells) {
    std::string row = "<tr>";
    for (const std::string &cell : cells) {
        row += Element("td", cell);
    }
    return row + "</tr>\n";
}

std::string TableStart(std::initializer_list<std::string_view> headings) {
    std::string start = "<table>\n<thead><tr>";
    for (const std::string_view heading : headings) {
        start += Element("th", heading);
    }
    return start + "</tr></thead>\n<tbody>\n";
}
constexpr std::string_view kTableEnd = "</tbody>\n</table>\n";

std::string_view Verdict(const Explanation &explanation) {
    if (StatusOf(explanation) == kExitRefused) {
        return "The command line is refused.";
    }
    return explanation.findings.empty()
               ? "The library accepts the command line; nothing was found."
               : "The library accepts the command line; read the findings.";
}

std::string LineHtml(const Explanation &explanation) {
    std::string html = Element("h1", "Firmware command line, explained") + "\n";
    if (explanation.library.empty()) {
        return html;
    }
    html += Element("p", Verdict(explanation)) + "\n" + Element("h2", "Command line") + "\n";
    html += Element("pre", explanation.notPassed.empty() ? explanation.commandLine
                                                         : explanation.notPassed) +
            "\n";
    return html + "<p>Library: " + Element("code", explanation.library) + "</p>\n";
}

std::string FindingsHtml(const Explanation &explanation) {
    if (explanation.library.empty()) {
        return "";
    }
    std::string html = Element("h2", "Findings") + "\n";
    if (explanation.findings.empty()) {
        return html + Element("p", "none") + "\n";
    }
    FindingLook look;
    look.command = explanation.ownPart;
    look.width = kFindingColumns;
    for (const Finding &finding : explanation.findings) {
        html += fmt::format("<pre class=\"{}\">{}</pre>\n", NameOf(finding.severity),
                            XmlLines(FindingText(finding, explanation.arguments, look)));
    }
    const std::string corrected = CorrectedText(explanation.corrected, look);
    if (!corrected.empty()) {
        html += fmt::format("<pre>{}</pre>\n", XmlLines(corrected));
    }
    return html;
}

std::string PlanHtml(const Explanation &explanation) {
    if (explanation.plan.empty()) {
        return "";
    }
    std::string html = Element("h2", "What happens, in this order") + "\n<ol>\n";
    for (const PlanStep &step : explanation.plan) {
        html += "<li>" + XmlText(step.text);
        const std::string call = DescribePlanCall(step);
        if (!call.empty()) {
            html += "<br/>" + Element("code", call);
        }
        html += step.results.empty() ? "" : "\n<ul>\n";
        for (const PlanResult &result : step.results) {
            html += Element("li", DescribePlanResult(result)) + "\n";
        }
        html += step.results.empty() ? "</li>\n" : "</ul>\n</li>\n";
    }
    return html + "</ol>\n";
}

std::string FlashHtml(const Explanation &explanation) {
    std::string html = Element("h2", "Flash") + "\n";
    if (explanation.flash.files.empty()) {
        return html + Element("p", "No firmware file goes to a bank of the flash.") + "\n";
    }
    html += FlashSvg(explanation.flash, SvgParts::Grid) + "<ul>\n";
    for (const FlashFile &file : explanation.flash.files) {
        html += fmt::format(
            "<li><span class=\"key\" style=\"background:{}\">{}</span> {}{}: {}"
            "</li>\n",
            SvgColourOf(file), XmlText(std::string(1, file.letter)), Element("code", file.name),
            file.boot ? " (boot firmware, programmed first)" : "", DescribeBanks(file.banks));
    }
    for (const std::string &remark : RemarksOf(explanation.flash)) {
        html += "<li><strong class=\"error\">" + XmlText(remark) + "</strong></li>\n";
    }
    return html + "</ul>\n";
}

std::string RecordsHtml(const Explanation &explanation) {
    std::string html;
    for (const auto &[record, bytes] : RecordsOf(explanation)) {
        html += Element("h2", fmt::format("{} record, {}",
                                          record == RecordKind::Command ? "Command" : "Sign",
                                          explanation.choice == FieldChoice::All
                                              ? "all fields"
                                              : "fields that differ from the defaults")) +
                "\n";
        const auto rows = RowsOf(record, bytes, explanation.choice);
        if (rows.empty()) {
            html += Element("p", "none") + "\n";
            continue;
        }
        html += TableStart({"field", "offset", "value", "bytes"});
        for (const RecordRow &row : rows) {
            html += Row({row.name, row.offset, row.value, row.bytes});
        }
        html += kTableEnd;
    }
    return html;
}

std::string DifferencesHtml(const Explanation &explanation) {
    if (explanation.comparedFile.empty()) {
        return "";
    }
    std::string html = Element("h2", "Differences from " + explanation.comparedFile) + "\n" +
                       TableStart({"field", "offset", "here", "file"});
    for (const FieldDifference &difference : explanation.differences) {
        html += Row({difference.name, fmt::format("0x{:04X}", difference.offset), difference.first,
                     difference.second});
    }
    return html.append(kTableEnd);
}

} // namespace

std::string ExplainHtml(const Explanation &explanation) {
    std::string page(kStart);
    page += LineHtml(explanation);
    page += FindingsHtml(explanation);
    page += PlanHtml(explanation);
    page += FlashHtml(explanation);
    page += DifferencesHtml(explanation);
    page += RecordsHtml(explanation);
    return page + "</body>\n</html>\n";
}

} // namespace ispctl
