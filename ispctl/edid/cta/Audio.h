#ifndef ISPCTL_EDID_CTA_AUDIO_H
#define ISPCTL_EDID_CTA_AUDIO_H

#include "edid/cta/DataBlockText.h"

namespace ispctl::edid {

/// Describe a payload each: the audio formats, the speakers.
Lines DescribeAudio(View payload);
Lines DescribeSpeakers(View payload);

} // namespace ispctl::edid

#endif
