#include "log/LogSummary.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

#include "ExitStatus.h"
#include "ResultInfo.h"

namespace ispctl {
namespace {

struct StatusRow {
    int status;
    const char *meaning;
};

constexpr StatusRow kStatuses[] = {
#define ISPCTL_STATUS_ROW(NAME, VALUE, MEANING) {VALUE, MEANING},
    ISPCTL_EXIT_STATUSES(ISPCTL_STATUS_ROW)
#undef ISPCTL_STATUS_ROW
};

std::string TitleOf(const LogEntry &entry) {
    std::string title = "no code";
    if (entry.code) {
        title = *entry.code == -1 ? "-1" : FormatResultCode(*entry.code);
    } else if (entry.status) {
        title += fmt::format(", status {}", *entry.status);
    }
    if (entry.code && entry.source == "plug-in") {
        title += " of the plug-in";
    }
    // The device was programmed, but output or a log is missing.
    return entry.code == 0 && !entry.passed ? title + ", but not complete" : title;
}

/// Without a code the meaning is different for each file and line, and the status says what it is.
std::string MeaningOf(const LogEntry &entry) {
    const auto *row =
        std::find_if(std::begin(kStatuses), std::end(kStatuses),
                     [&](const StatusRow &status) { return entry.status == status.status; });
    return entry.code || row == std::end(kStatuses) ? entry.meaning : row->meaning;
}

} // namespace

LogSummary Summarise(const std::vector<LogEntry> &entries) {
    LogSummary summary;
    for (const LogEntry &entry : entries) {
        ++(entry.passed ? summary.passed : summary.failed);
        const std::string title = TitleOf(entry);
        auto group = std::find_if(summary.groups.begin(), summary.groups.end(),
                                  [&](const ResultGroup &known) { return known.title == title; });
        if (group == summary.groups.end()) {
            summary.groups.push_back({title, MeaningOf(entry), {}});
            group = summary.groups.end() - 1;
        }
        group->runs.push_back(entry);
    }
    std::stable_sort(summary.groups.begin(), summary.groups.end(),
                     [](const ResultGroup &a, const ResultGroup &b) {
                         const bool isFirst = a.runs.front().passed;
                         return isFirst != b.runs.front().passed ? isFirst
                                                                 : a.runs.size() > b.runs.size();
                     });
    return summary;
}

} // namespace ispctl
