#include "ShellRun.h"

#include <cstdlib>
#include <sys/wait.h>

#include "support/EnvGuard.h"
#include "support/TempFolder.h"

ConsoleResult RunShell(const std::string &line) {
    const TempFolder folder;
    const EnvGuard console("ISPCTL", ISPCTL_EXECUTABLE);
    const EnvGuard library("SCRIPTED", SCRIPTED_LIBRARY);
    const EnvGuard real("REAL", REAL_LIBRARY);
    const EnvGuard ending("ENDING", ENDING_LIBRARY);
    const std::string script = folder.Write("line.sh", line + "\n");
    const std::string command = "timeout 30 sh " + script + " >" + folder.Write("out", "") + " 2>" +
                                folder.Write("err", "") + " </dev/null";
    // Not const, because the macros of macOS cast its address.
    int status = std::system(command.c_str()); // NOLINT(*-env33-c,concurrency-mt-unsafe)
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.Read("out"), folder.Read("err")};
}
