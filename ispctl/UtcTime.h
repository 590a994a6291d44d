#ifndef ISPCTL_UTC_TIME_H
#define ISPCTL_UTC_TIME_H

#include <string>

namespace ispctl {

/// RETURNS the current time as ISO 8601 with milliseconds, in UTC: "2026-01-31T12:00:00.000Z".
std::string UtcTime();

} // namespace ispctl

#endif
