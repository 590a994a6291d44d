#ifndef ISPCTL_SCRIPT_SCRIPT_COMMAND_H
#define ISPCTL_SCRIPT_SCRIPT_COMMAND_H

#include <optional>
#include <string>

#include "Session.h"

namespace ispctl {

/// What `ispctl script` was asked for.
struct ScriptOptions {
    std::string file;
    std::string output;                    ///< assemble: the bytes go here; empty: a byte list
    bool text = false;                     ///< check, run: the file is script text
    std::string library;                   ///< run: empty: the installed one
    std::string comm;                      ///< run: the communication library
    bool virtualScaler = false;            ///< run: take the virtual bus
    std::optional<unsigned short> channel; ///< run: communication channel to choose first
};

/// Each RETURNS kExitSuccess, kExitFailedRun for a script that is refused or fails, or
/// kExitNotRun.
ExitStatus AssembleCommand(const ScriptOptions &options, Session &session);
ExitStatus ListCommand(const ScriptOptions &options, Session &session);
ExitStatus CheckCommand(const ScriptOptions &options, Session &session);
ExitStatus RunScriptCommand(const ScriptOptions &options, Session &session);

/// What a result of the runner means.
std::string DescribeScriptResult(int code);

} // namespace ispctl

#endif
