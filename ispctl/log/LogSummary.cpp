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

/// What runs without a code have in common that ended at the same stage.
struct StageRow {
    int status;
    const char *stage;
    const char *meaning;
};

constexpr StageRow kStages[] = {
    {kExitUsage, "open", "the library could not be opened, so it was not called"},
    {kExitFailed, "call", "ispctl failed after the library was called"},
    {kExitRefused, "check", "refused by a finding about the command line"},
    {kExitRefused, "files", "the library refuses the line with the files as they are now"},
    {kExitRefused, "backup", "the banks to back up are not known"},
    {kExitPluginEnded, "backup", "the plug-in ended the process while it read the backup"},
    {kExitPluginEnded, "call", "a plug-in ended the process"},
    {kExitFileError, "lock", "the device is in use by another run"},
    {kExitFileError, "log", "the log cannot be written"},
    {kExitFileError, "files", "a file of the run, or its lock, cannot be read or written"},
    {kExitFileError, "backup", "the backup cannot be written"},
    {kExitInterrupted, "check", "stopped by a signal before the library was called"},
    {kExitInterrupted, "backup", "stopped by a signal before anything was programmed"},
    {kExitInterrupted, "call", "stopped by a signal while the library was at work"},
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
        title += entry.stage.empty() ? "" : " at stage " + entry.stage;
    }
    if (entry.code && entry.source == "plug-in") {
        title += " of the plug-in";
    }
    // The device was programmed, but output or a log is missing.
    return entry.code == 0 && !entry.passed ? title + ", but not complete" : title;
}

/// Without a code the meaning is different for each file and line; status and stage say what those
/// of a group have in common.
std::string MeaningOf(const LogEntry &entry) {
    if (entry.code || !entry.status) {
        return entry.meaning;
    }
    const auto *stage =
        std::find_if(std::begin(kStages), std::end(kStages), [&](const StageRow &row) {
            return entry.status == row.status && entry.stage == row.stage;
        });
    if (stage != std::end(kStages)) {
        return stage->meaning;
    }
    const auto *status =
        std::find_if(std::begin(kStatuses), std::end(kStatuses),
                     [&](const StatusRow &row) { return entry.status == row.status; });
    return status == std::end(kStatuses) ? entry.meaning : status->meaning;
}

bool BelongsTo(const ResultGroup &group, const std::string &title, const LogEntry &entry) {
    const bool hasWordsOnly = !entry.code && !entry.status;
    return group.title == title && (!hasWordsOnly || group.meaning == entry.meaning);
}

} // namespace

LogSummary Summarise(const std::vector<LogEntry> &entries) {
    LogSummary summary;
    for (const LogEntry &entry : entries) {
        ++(entry.passed ? summary.passed : summary.failed);
        const std::string title = TitleOf(entry);
        auto group =
            std::find_if(summary.groups.begin(), summary.groups.end(),
                         [&](const ResultGroup &known) { return BelongsTo(known, title, entry); });
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
