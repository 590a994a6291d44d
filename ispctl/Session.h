#ifndef ISPCTL_SESSION_H
#define ISPCTL_SESSION_H

#include <string>
#include <string_view>
#include <vector>

#include "ConsoleStreams.h"
#include "LibraryProcess.h"

namespace ispctl {

/// The state that every subcommand gets.
struct Session {
    ConsoleStreams streams;
    std::vector<std::string> arguments; ///< of this program, unchanged
    ParentLink *link = nullptr;         ///< to ispctl if this is the library's process; else null
    bool json = false; ///< a failure is also written as the result event of docs/ispctl.md

    /// Prints why a command fails. RETURNS the status, so that a command can return the call.
    /// \param stage  how far it was, as in docs/ispctl.md; empty: what the status tells
    ExitStatus Fail(ExitStatus status, std::string_view text, std::string_view stage = {});
};

} // namespace ispctl

#endif
