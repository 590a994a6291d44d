#include "log/SummaryText.h"

#include <fmt/format.h>

#include "ResultInfo.h"
#include "Utf8.h"

namespace ispctl {
namespace {

std::string TagsOf(const LogEntry &entry) {
    std::string text;
    for (const auto &[key, value] : entry.tags) {
        text += (text.empty() ? "" : " ") + key + "=" + value;
    }
    return text.empty() ? "no tags, run " + (entry.run.empty() ? "unknown" : entry.run) : text;
}

template <class Value> Json OrNull(const std::optional<Value> &value) {
    return value ? Json(*value) : Json(nullptr);
}

Json RunJson(const LogEntry &entry) {
    Json tags = Json::object();
    for (const auto &[key, value] : entry.tags) {
        tags[EscapeBytes(key).text] = JsonString(value);
    }
    return {{"run", JsonString(entry.run)},
            {"time", JsonString(entry.time)},
            {"status", OrNull(entry.status)},
            {"meaning", JsonString(entry.meaning)},
            {"tags", tags}};
}

} // namespace

std::string SummaryText(const LogSummary &summary, Charset charset) {
    std::string text = fmt::format("{} passed, {} failed\n", summary.passed, summary.failed);
    for (const ResultGroup &group : summary.groups) {
        text += Visible(fmt::format("{}: {}: {}", group.title, group.meaning, group.runs.size()),
                        Layout::OneLine, charset) +
                "\n";
        for (const LogEntry &entry : group.runs) {
            text += "  " + Visible(TagsOf(entry), Layout::OneLine, charset) + "\n";
        }
    }
    return text;
}

Json SummaryJson(const LogSummary &summary) {
    Json codes = Json::array();
    for (const ResultGroup &group : summary.groups) {
        const LogEntry &first = group.runs.front();
        Json runs = Json::array();
        for (const LogEntry &entry : group.runs) {
            runs.push_back(RunJson(entry));
        }
        codes.push_back({{"code", OrNull(first.code)},
                         {"hex", first.code ? Json(FormatResultCode(*first.code)) : Json(nullptr)},
                         {"status", OrNull(first.status)},
                         {"source", StringOrNull(first.source)},
                         {"stage", StringOrNull(first.stage)},
                         {"passed", first.passed},
                         {"meaning", JsonString(group.meaning)},
                         {"count", group.runs.size()},
                         {"runs", runs}});
    }
    return {{"passed", summary.passed}, {"failed", summary.failed}, {"codes", codes}};
}

} // namespace ispctl
