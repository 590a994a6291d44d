#ifndef ISPCTL_EDID_CTA_VIDEO_H
#define ISPCTL_EDID_CTA_VIDEO_H

#include "edid/cta/DataBlockText.h"

namespace ispctl::edid {

/// RETURNS "VIC 16, 1920 x 1080 at 60 Hz, 16:9".
std::string DescribeVic(unsigned int vic);

/// RETURNS "VIC 16, …" of a short video descriptor, with "native" if it is marked so.
std::string DescribeShortVideo(std::uint8_t descriptor);

// The rest describe a payload each.
Lines DescribeVideo(View payload);
Lines DescribeVideoCapability(View payload);
Lines DescribeColorimetry(View payload);
Lines DescribeHdrStatic(View payload);
Lines DescribePreference(View payload);
/// \param video  the short video descriptors of the same CTA block, which the bits count
Lines DescribeYcbcr420Map(View payload, const Bytes &video);

} // namespace ispctl::edid

#endif
