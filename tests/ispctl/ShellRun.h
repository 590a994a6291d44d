#ifndef SCALER_ISP_TESTS_HOST_SHELL_RUN_H
#define SCALER_ISP_TESTS_HOST_SHELL_RUN_H

#include <string>

#include "ConsoleProcess.h"

/// Runs a line of the shell, for limits and redirections. In it $ISPCTL is the console and
/// $SCRIPTED the library that does what its command line says. The line may redirect its own
/// output.
/// RETURNS the status of the shell, which ends with 124 after 30 seconds.
ConsoleResult RunShell(const std::string &line);

#endif
