#ifndef ISPCTL_EDID_PROBLEMS_H
#define ISPCTL_EDID_PROBLEMS_H

#include "edid/EdidBytes.h"
#include "edid/Finding.h"

namespace ispctl::edid {

/// RETURNS what is wrong with an EDID: header, size, checksum of each block, number of blocks.
/// Each block of 128 bytes is checked: the library's EDIDToBin sums up all of them as one.
Findings ProblemsOf(View edid);

/// RETURNS deviations from the standards that leave an EDID readable.
/// REQUIRES: a whole base block.
Findings RemarksOf(View edid);

} // namespace ispctl::edid

#endif
