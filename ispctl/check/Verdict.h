#ifndef ISPCTL_CHECK_VERDICT_H
#define ISPCTL_CHECK_VERDICT_H

#include <string>

#include "Session.h"
#include "doctor/Finding.h"

namespace ispctl::check {

/// What is known about a plug-in at the end.
struct Verdict {
    std::string file;
    std::string kind; ///< "isp", "sign", or empty
    bool called;
    const doctor::Report &report;
};

/// The findings, then the verdict in the last line. A file that is no plug-in, or cannot be read,
/// gets one line on standard error. RETURNS the exit status.
ExitStatus ShowVerdict(const Verdict &verdict, Session &session);

/// One JSON document. RETURNS the exit status.
ExitStatus ShowVerdictJson(const Verdict &verdict, ConsoleStreams &streams);

} // namespace ispctl::check

#endif
