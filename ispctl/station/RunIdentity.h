#ifndef ISPCTL_STATION_RUN_IDENTITY_H
#define ISPCTL_STATION_RUN_IDENTITY_H

#include <string>
#include <vector>

#include "station/StationOptions.h"

namespace ispctl {

// Options that only the library's process gets: what the ispctl that starts it has chosen. The
// option parser does not know them, so that nobody else can give them. The run id stands last.
inline constexpr const char *kRunIdOption = "--run-id";
inline constexpr const char *kPrivateDirectoryOption = "--private-directory";

/// RETURNS 16 hexadecimal digits that no other run has.
std::string NewRunId();

/// The arguments of the library's process: those of this program, and an option of `run`.
std::vector<std::string> WithRunOption(std::vector<std::string> arguments, const char *option,
                                       const std::string &value);

/// In the library's process: moves what WithRunOption has added to the options. What a user typed
/// follows the run id and stays.
void TakeRunOptions(std::vector<std::string> &arguments, StationOptions &options);

} // namespace ispctl

#endif
