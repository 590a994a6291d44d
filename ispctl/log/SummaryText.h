#ifndef ISPCTL_LOG_SUMMARY_TEXT_H
#define ISPCTL_LOG_SUMMARY_TEXT_H

#include <string>

#include "JsonText.h"
#include "VisibleText.h"
#include "log/LogSummary.h"

namespace ispctl {

/// "N passed, M failed", then each result with its meaning and count, and a line with the tags of
/// each of its runs.
std::string SummaryText(const LogSummary &summary, Charset charset);

/// The same as JSON, without what could not be read.
Json SummaryJson(const LogSummary &summary);

} // namespace ispctl

#endif
