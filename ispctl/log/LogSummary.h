#ifndef ISPCTL_LOG_LOG_SUMMARY_H
#define ISPCTL_LOG_LOG_SUMMARY_H

#include <cstddef>
#include <string>
#include <vector>

#include "log/LogEntry.h"

namespace ispctl {

/// The runs with the same result.
struct ResultGroup {
    std::string title; ///< the code; without one, the exit status of ispctl and the stage
    std::string meaning;
    std::vector<LogEntry> runs;
};

struct LogSummary {
    std::size_t passed = 0;
    std::size_t failed = 0;
    std::vector<ResultGroup> groups; ///< successes first, then the most frequent
};

/// Runs belong together if they have the same code from the same source; without a code, if they
/// ended with the same status at the same stage or, in a log of events, with the same words. The
/// meaning is that of the first of them.
LogSummary Summarise(const std::vector<LogEntry> &entries);

} // namespace ispctl

#endif
