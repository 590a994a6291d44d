#ifndef ISPCTL_OUTPUT_NAMES_H
#define ISPCTL_OUTPUT_NAMES_H

#include <string>
#include <vector>

namespace ispctl {

/// Looks for an output that would overwrite or extend a file that the library's line names, or
/// another output.
/// \param outputs    names of files, empty: none
/// \param arguments  of the library
/// RETURNS the name of the first one, empty if there is none.
std::string FindTakenOutput(const std::vector<std::string> &outputs,
                            const std::vector<std::string> &arguments);

} // namespace ispctl

#endif
