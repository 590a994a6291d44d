#ifndef ISPCTL_SCRIPT_SCRIPT_COMMAND_H
#define ISPCTL_SCRIPT_SCRIPT_COMMAND_H

#include <optional>
#include <string>

#include "Session.h"

namespace ispctl {

/// The options of `ispctl script`.
struct ScriptOptions {
    std::string file;
    std::string output;         ///< assemble: file for the bytes; empty: print a byte list
    bool text = false;          ///< check, run: the file is script text
    std::string library;        ///< run: empty: the installed one
    std::string comm;           ///< run: the communication library
    bool virtualScaler = false; ///< run: use the virtual bus
    std::optional<unsigned short> channel; ///< run: communication channel to select first
};

/// Each RETURNS kExitSuccess, kExitFailed if the script is rejected or fails, or another status.
ExitStatus AssembleCommand(const ScriptOptions &options, Session &session);
ExitStatus ListCommand(const ScriptOptions &options, Session &session);
ExitStatus CheckCommand(const ScriptOptions &options, Session &session);
ExitStatus RunScriptCommand(const ScriptOptions &options, Session &session);

/// RETURNS the message for a result of the runner; the codes 1 to 3 are ambiguous, and the message
/// says so.
std::string DescribeScriptResult(int code);

} // namespace ispctl

#endif
