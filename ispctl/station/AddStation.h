#ifndef ISPCTL_STATION_ADD_STATION_H
#define ISPCTL_STATION_ADD_STATION_H

#include "station/StationOptions.h"

namespace CLI {
class App;
}

namespace ispctl {

/// Adds the options for stations to `ispctl run`.
void AddStationOptions(CLI::App &run, StationOptions &options);

} // namespace ispctl

#endif
