#ifndef ISPCTL_EXPLAIN_EXPLAIN_LINE_H
#define ISPCTL_EXPLAIN_EXPLAIN_LINE_H

#include <optional>
#include <string>

#include "explain/ExplainOptions.h"
#include "explain/Explanation.h"

namespace ispctl {

/// Opens the library and lets its parser read the line; no plug-in is opened. The process must be
/// the library's own, see LibraryProcess.h.
/// RETURNS nothing if the library cannot be opened or has no parser, with the reason in error.
std::optional<Explanation> ExplainLine(const ExplainOptions &options, std::string &error);

} // namespace ispctl

#endif
