#ifndef ISPCTL_LINE_LINE_REPORT_H
#define ISPCTL_LINE_LINE_REPORT_H

#include <string>
#include <string_view>
#include <vector>

#include "line/CorrectLine.h"

namespace ispctl {

/// The result of checking a command line, as the library's process reports it.
struct LineReport {
    std::string notice; ///< why not everything was checked; may be empty
    std::vector<Finding> findings;
    CorrectedLine corrected;
};

/// The bytes of a report of at most `limit` bytes: all corrected lines are left out first, then
/// findings from the end, which the notice mentions.
std::string EncodeLineReport(const LineReport &report, std::size_t limit);

/// The report in such bytes. Throws std::exception if they are none.
LineReport DecodeLineReport(std::string_view bytes);

} // namespace ispctl

#endif
