#ifndef ISPCTL_LINE_CHECK_PASSABLE_H
#define ISPCTL_LINE_CHECK_PASSABLE_H

#include <string>
#include <vector>

#include "line/Finding.h"

namespace ispctl {

/// The findings about arguments that BuildCommandLine does not accept, which nobody can allow.
/// \param error  of the command line that it returned
std::vector<Finding> CheckPassable(const std::vector<std::string> &arguments,
                                   const std::string &error);

} // namespace ispctl

#endif
