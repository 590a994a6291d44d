#ifndef ISPCTL_EDID_EDID_VIEW_H
#define ISPCTL_EDID_EDID_VIEW_H

#include "edid/EdidReport.h"

namespace ispctl::edid {

/// RETURNS the facts and remarks, one per line, and a hex dump. REQUIRES: report.HasFacts().
std::string WriteView(const Report &report);

/// RETURNS a byte list with 16 bytes per line and a comment before each block.
std::string WriteByteList(View edid);

} // namespace ispctl::edid

#endif
