#ifndef ISPCTL_SESSION_H
#define ISPCTL_SESSION_H

#include <string>
#include <vector>

#include "ConsoleStreams.h"
#include "LibraryProcess.h"

namespace ispctl {

/// What every command has: the way to the user, and who it is.
struct Session {
    ConsoleStreams streams;
    std::vector<std::string> arguments; ///< of this program, as typed
    ConsoleLink *link = nullptr;        ///< in the library's process: to the console; else null

    /// Says why a command fails. RETURNS the status.
    ExitStatus Fail(ExitStatus status, std::string_view text) {
        streams.PrintMessage(text);
        return status;
    }
};

} // namespace ispctl

#endif
