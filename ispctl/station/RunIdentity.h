#ifndef ISPCTL_STATION_RUN_IDENTITY_H
#define ISPCTL_STATION_RUN_IDENTITY_H

#include <string>
#include <vector>

namespace ispctl {

// Options that only the library's process gets: what the ispctl that starts it has chosen.
inline constexpr const char *kRunIdOption = "--run-id";
inline constexpr const char *kPrivateDirectoryOption = "--private-directory";

/// RETURNS 16 hexadecimal digits that no other run has.
std::string NewRunId();

/// The arguments of the library's process: those of this program, and an option of `run`.
std::vector<std::string> WithRunOption(std::vector<std::string> arguments, const char *option,
                                       const std::string &value);

} // namespace ispctl

#endif
