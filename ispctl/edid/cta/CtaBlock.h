#ifndef ISPCTL_EDID_CTA_CTA_BLOCK_H
#define ISPCTL_EDID_CTA_CTA_BLOCK_H

#include <vector>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

inline constexpr std::uint8_t kCtaTag = 0x02;

/// Tags of the data blocks of CTA-861.
inline constexpr std::uint8_t kAudioTag = 1;
inline constexpr std::uint8_t kVideoTag = 2;
inline constexpr std::uint8_t kVendorTag = 3;
inline constexpr std::uint8_t kSpeakerTag = 4;
inline constexpr std::uint8_t kTransferTag = 5;
inline constexpr std::uint8_t kVideoFormatTag = 6;
inline constexpr std::uint8_t kExtendedTag = 7;
/// Of a data block that ends before its extended tag.
inline constexpr std::uint8_t kNoExtendedTag = 0xFF;
/// The extended tag of HDMI 2.1's block-count override.
inline constexpr std::uint8_t kBlockCountOverrideTag = 0x78;

/// One data block.
struct DataBlock {
    std::uint8_t tag = 0;         ///< 0 to 7
    std::uint8_t extendedTag = 0; ///< if tag is kExtendedTag
    View payload;                 ///< without the tags
    bool isWhole = true; ///< false: it ends before its tag, or goes beyond the timings' offset

    bool IsExtended(std::uint8_t extended) const {
        return tag == kExtendedTag && extendedTag == extended;
    }
};

/// RETURNS the data blocks of a CTA block in their order; none before revision 3, which introduced
/// them. A block that is too long is the last one, and its payload is truncated.
/// REQUIRES: 128 bytes.
std::vector<DataBlock> DataBlocksOf(View block);

/// RETURNS the detailed timings, from the offset in byte 2 to the first slot whose pixel clock is
/// 0. REQUIRES: 128 bytes.
std::vector<View> CtaTimingSlots(View block);

/// RETURNS whether byte 2 is possible: 0 if there is neither a data block nor a timing, else 4 to
/// 127. REQUIRES: 128 bytes.
bool IsCtaOffsetValid(View block);

} // namespace ispctl::edid

#endif
