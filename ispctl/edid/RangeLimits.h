#ifndef ISPCTL_EDID_RANGE_LIMITS_H
#define ISPCTL_EDID_RANGE_LIMITS_H

#include <optional>
#include <string>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

/// The range limits of a display.
struct RangeLimits {
    unsigned int verticalMinHz = 0, verticalMaxHz = 0;
    unsigned int horizontalMinKhz = 0, horizontalMaxKhz = 0;
    std::optional<double> maxPixelClockMhz;
    std::string formula; ///< how timings are generated: "CVT 1.2", "second GTF" …; empty: unknown
};

/// RETURNS the first descriptor with range limits. REQUIRES: a whole base block.
std::optional<RangeLimits> RangeLimitsOf(View edid);

/// RETURNS "48 to 75 Hz, 30 to 83 kHz, at most 170 MHz".
std::string DescribeRangeLimits(const RangeLimits &range);

} // namespace ispctl::edid

#endif
