#ifndef ISPCTL_EDID_EDID_JSON_H
#define ISPCTL_EDID_EDID_JSON_H

#include <string>
#include <vector>

#include "edid/EdidReport.h"

namespace ispctl::edid {

/// RETURNS an array with one object per report, in ASCII, with a newline at the end. docs/edid.md
/// describes its keys.
std::string WriteJson(const std::vector<Report> &reports);

} // namespace ispctl::edid

#endif
