#include "line/LineReport.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <set>

#include "Utf8.h"

namespace ispctl {
namespace {

using Json = nlohmann::json;

Json Encoded(const std::vector<std::string> &arguments) {
    Json json = Json::array();
    for (const std::string &argument : arguments) {
        json.push_back(EscapeBytes(argument).text);
    }
    return json;
}

Json Encoded(const Finding &finding, bool withCorrected) {
    Json json{{"n", finding.name},
              {"s", static_cast<int>(finding.severity)},
              {"m", EscapeBytes(finding.message).text},
              {"g", EscapeBytes(finding.suggestion).text},
              {"o", EscapeBytes(finding.option).text},
              {"v", EscapeBytes(finding.value).text},
              {"p", finding.offset},
              {"l", finding.length}};
    if (finding.argument) {
        json["a"] = *finding.argument;
    }
    if (!finding.followsFrom.empty()) {
        json["f"] = EscapeBytes(finding.followsFrom).text;
    }
    if (withCorrected) {
        json["c"] = Encoded(finding.corrected);
    }
    return json;
}

std::string Encoded(const LineReport &report, bool withCorrected, std::size_t count) {
    Json json{{"notice", EscapeBytes(report.notice).text}, {"findings", Json::array()}};
    for (std::size_t i = 0; i < count; ++i) {
        json["findings"].push_back(Encoded(report.findings[i], withCorrected));
    }
    if (withCorrected) {
        json["corrected"] = Encoded(report.corrected.arguments);
        json["remaining"] = Json::array();
        for (const Finding &finding : report.corrected.remaining) {
            json["remaining"].push_back(Encoded(finding, false));
        }
    }
    if (count < report.findings.size()) {
        json["notice"] =
            fmt::format("{} more findings are not shown", report.findings.size() - count);
    }
    return json.dump();
}

/// A name that lives as long as the program, as those of the table do.
std::string_view Interned(const std::string &name) {
    static std::set<std::string, std::less<>> names;
    return *names.insert(name).first;
}

Finding Decoded(const Json &json) {
    Finding finding;
    finding.name = Interned(json.at("n").get<std::string>());
    finding.severity = static_cast<FindingClass>(json.at("s").get<int>());
    finding.message = json.at("m").get<std::string>();
    finding.suggestion = json.at("g").get<std::string>();
    finding.option = json.at("o").get<std::string>();
    finding.value = json.at("v").get<std::string>();
    finding.offset = json.at("p").get<std::size_t>();
    finding.length = json.at("l").get<std::size_t>();
    if (json.contains("a")) {
        finding.argument = json.at("a").get<std::size_t>();
    }
    if (json.contains("f")) {
        finding.followsFrom = json.at("f").get<std::string>();
    }
    if (json.contains("c")) {
        finding.corrected = json.at("c").get<std::vector<std::string>>();
    }
    return finding;
}

} // namespace

std::string EncodeLineReport(const LineReport &report, std::size_t limit) {
    std::size_t count = report.findings.size();
    std::string bytes = Encoded(report, true, count);
    if (bytes.size() > limit) {
        bytes = Encoded(report, false, count);
    }
    while (bytes.size() > limit) {
        count /= 2;
        bytes = Encoded(report, false, count);
    }
    return bytes;
}

LineReport DecodeLineReport(std::string_view bytes) {
    const Json json = Json::parse(bytes);
    LineReport report;
    report.notice = json.at("notice").get<std::string>();
    for (const Json &finding : json.at("findings")) {
        report.findings.push_back(Decoded(finding));
    }
    if (json.contains("corrected")) {
        report.corrected.arguments = json.at("corrected").get<std::vector<std::string>>();
        for (const Json &finding : json.at("remaining")) {
            report.corrected.remaining.push_back(Decoded(finding));
        }
    }
    return report;
}

} // namespace ispctl
