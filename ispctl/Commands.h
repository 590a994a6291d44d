#ifndef ISPCTL_COMMANDS_H
#define ISPCTL_COMMANDS_H

#include <CLI/CLI.hpp>

#include "RunCommand.h"
#include "Session.h"
#include "check/AddCheckPlugin.h"
#include "doctor/AddDoctor.h"
#include "edid/AddEdid.h"
#include "explain/AddExplain.h"
#include "log/AddLog.h"
#include "script/AddScript.h"

namespace ispctl {

/// All commands with their options. Help, manual pages and shell completion are made from them.
struct Commands {
    /// \param session  must live as long as this object
    explicit Commands(Session &session);
    Commands(const Commands &) = delete; // the parser refers to the options

    CLI::App app;
    CLI::App *run;
    CLI::App *explain;
    ExitStatus status = kExitSuccess; ///< of the command that the parser has called
    RunOptions runOptions;
    ExplainOptions explainOptions;
    ScriptOptions scriptOptions;
    EdidOptions edidOptions;
    doctor::AllOptions doctorOptions;
    check::CheckOptions checkOptions;
    SummaryOptions summaryOptions;
};

} // namespace ispctl

#endif
