#ifndef ISPCTL_EDID_CTA_VENDOR_H
#define ISPCTL_EDID_CTA_VENDOR_H

#include "edid/cta/DataBlockText.h"

namespace ispctl::edid {

/// RETURNS kind and facts of a vendor-specific data block, recognised by the OUI in its first
/// three bytes.
/// \param kind  what precedes the vendor, such as "vendor"
DataBlockText DescribeVendor(const char *kind, View payload);

/// Describes the capabilities of HDMI 2.x.
/// \param fields  from the version byte on
Lines DescribeHdmiForum(View fields);

} // namespace ispctl::edid

#endif
