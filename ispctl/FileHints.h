#ifndef ISPCTL_FILE_HINTS_H
#define ISPCTL_FILE_HINTS_H

#include <filesystem>
#include <string>
#include <vector>

namespace ispctl {

/// The library takes relative file names from its own folder. RETURNS one sentence for each such
/// name in arguments that a person typed for a file in the caller's folder. \param libraryFolder
/// absolute \param callerFolder   absolute
std::vector<std::string> FileHints(const std::vector<std::string> &arguments,
                                   const std::filesystem::path &libraryFolder,
                                   const std::filesystem::path &callerFolder);

} // namespace ispctl

#endif
