#ifndef ISPCTL_EDID_STANDARD_TIMINGS_H
#define ISPCTL_EDID_STANDARD_TIMINGS_H

#include <string>
#include <vector>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

/// Both RETURN timings such as "1024 x 768 at 60 Hz", those of descriptors last.
/// REQUIRES: a whole base block.
std::vector<std::string> EstablishedTimingsOf(View edid);
std::vector<std::string> StandardTimingsOf(View edid);

} // namespace ispctl::edid

#endif
