#ifndef ISPCTL_LOG_LOG_SUMMARY_H
#define ISPCTL_LOG_LOG_SUMMARY_H

#include <cstddef>
#include <string>
#include <vector>

#include "log/LogEntry.h"

namespace ispctl {

/// The runs with the same result.
struct ResultGroup {
    std::string title; ///< the code, or the exit status of ispctl if there is no code
    std::string meaning;
    std::vector<LogEntry> runs;
};

struct LogSummary {
    std::size_t passed = 0;
    std::size_t failed = 0;
    std::vector<ResultGroup> groups; ///< successes first, then the most frequent
};

/// Runs belong together if they have the same code from the same source, or no code and the same
/// status. The meaning is that of the first of them.
LogSummary Summarise(const std::vector<LogEntry> &entries);

} // namespace ispctl

#endif
