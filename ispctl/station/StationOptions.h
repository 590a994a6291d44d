#ifndef ISPCTL_STATION_STATION_OPTIONS_H
#define ISPCTL_STATION_STATION_OPTIONS_H

#include <string>
#include <utility>
#include <vector>

namespace ispctl {

using Tag = std::pair<std::string, std::string>;

/// The options of `ispctl run` for stations that program many devices.
struct StationOptions {
    std::string file;           ///< file to append the record of the run to; empty: none
    std::vector<Tag> tags;      ///< in their order
    std::string backup;         ///< directory for what the banks hold before; empty: none
    double wait = 0;            ///< how long to wait for the device's lock. UNITS: seconds
    bool privateCopy = false;   ///< run on copies
    bool noPrivateCopy = false; ///< do not, although the run has a record

    // Of the library's process, chosen by the ispctl that starts it.
    std::string runId;
    std::string privateDirectory; ///< for the copies; empty: none are wanted
};

} // namespace ispctl

#endif
