#ifndef ISPCTL_COMM_COMM_PROCESS_H
#define ISPCTL_COMM_COMM_PROCESS_H

#include <functional>

#include "Session.h"

namespace ispctl {

/// Who writes to standard output: libraries may print there, too. If only the work does, what they
/// print goes to standard error.
enum class OutputOf { Process, Work };

/// Does the work in a separate process, because communication libraries may crash: the first
/// process starts the same command again and shows its output, the second one does the work.
/// What it throws is reported there.
/// RETURNS the status of the work, or kExitPluginEnded if the process did not end by itself.
ExitStatus RunInCommProcess(Session &session, OutputOf output,
                            const std::function<ExitStatus()> &work);

} // namespace ispctl

#endif
