#ifndef ISPCTL_EDID_EDID_BLOCKS_H
#define ISPCTL_EDID_EDID_BLOCKS_H

#include <string>
#include <vector>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

/// One block of 128 bytes.
struct Block {
    std::uint8_t tag = 0; ///< 0 for the base block
    std::string kind;
    std::uint8_t checksum = 0;
    std::uint8_t expected = 0;
};

/// RETURNS the whole blocks in their order.
std::vector<Block> BlocksOf(View edid);

/// RETURNS how many extension blocks the EDID declares: byte 126, or the count of the block-count
/// override of HDMI in the first extension block. Displays with more than one extension declare
/// only one in byte 126, because old sources read no further.
/// REQUIRES: a whole base block.
unsigned int DeclaredExtensions(View edid);

} // namespace ispctl::edid

#endif
