#ifndef ISPCTL_SCRIPT_SCRIPT_COMMAND_H
#define ISPCTL_SCRIPT_SCRIPT_COMMAND_H

#include <string>

#include "Session.h"
#include "comm/CommOptions.h"

namespace ispctl {

/// The options of `ispctl script`; those of a communication library are for run.
struct ScriptOptions : CommOptions {
    std::string file;
    std::string output;  ///< assemble: file for the bytes; empty: print a byte list
    bool text = false;   ///< check, list, run: the file is script text
    bool binary = false; ///< the same: it is bytes; neither: its content decides
};

/// Each RETURNS kExitSuccess, kExitFailed if the script is rejected or fails, or another status.
ExitStatus AssembleCommand(const ScriptOptions &options, Session &session);
ExitStatus ListCommand(const ScriptOptions &options, Session &session);
ExitStatus CheckCommand(const ScriptOptions &options, Session &session);
ExitStatus RunScriptCommand(const ScriptOptions &options, Session &session);

} // namespace ispctl

#endif
