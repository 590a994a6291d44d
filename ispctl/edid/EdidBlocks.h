#ifndef ISPCTL_EDID_EDID_BLOCKS_H
#define ISPCTL_EDID_EDID_BLOCKS_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ispctl {

/// RETURNS what is wrong with an EDID, block by block: its size, the header, the checksum of each
/// block of 128 bytes, the count of extension blocks. Empty: nothing.
std::vector<std::string> EdidProblems(std::span<const std::uint8_t> edid);

/// RETURNS a few facts, a line each: manufacturer and product, week and year, version, preferred
/// timing, name, extensions. REQUIRES: EdidProblems found nothing.
std::string EdidFacts(std::span<const std::uint8_t> edid);

} // namespace ispctl

#endif
