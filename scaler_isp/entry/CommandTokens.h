#ifndef SCALER_ISP_ENTRY_COMMAND_TOKENS_H
#define SCALER_ISP_ENTRY_COMMAND_TOKENS_H

#include <string>
#include <vector>

/// As ParseCommandLineParameter, but throws if there is no memory.
bool SplitCommandLine(const std::string &commandLine, std::vector<std::string> &tokens);

#endif
