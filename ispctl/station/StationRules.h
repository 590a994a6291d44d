#ifndef ISPCTL_STATION_STATION_RULES_H
#define ISPCTL_STATION_STATION_RULES_H

#include <string>

#include "RunCommand.h"

namespace ispctl {

/// RETURNS why these options of `run` do not go together; empty if they do.
std::string StationUsageError(const RunOptions &options);

} // namespace ispctl

#endif
