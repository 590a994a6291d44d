#ifndef ISPCTL_CHECK_CHECK_PLUGIN_COMMAND_H
#define ISPCTL_CHECK_CHECK_PLUGIN_COMMAND_H

#include <string>
#include <vector>

#include "Session.h"

namespace ispctl::check {

struct CheckOptions {
    std::string file;
    bool call = false;
    bool json = false;
    std::vector<std::string> probe; ///< of the process that calls: library, plug-in, row, directory
};

/// The command of the processes that call a plug-in; it is not for users.
inline constexpr const char *kCallCommand = "check-plugin-call";

/// Examines a plug-in's file and reports what it finds with a remedy. RETURNS 0 if nothing is worse
/// than a remark, 3 for warnings, 1 for errors, 5 if the library cannot use it, 7 if a function
/// ended the process, 8 if it cannot be read.
ExitStatus CheckPluginCommand(const CheckOptions &options, Session &session);

} // namespace ispctl::check

#endif
