#ifndef ISPCTL_EDID_EDID_BLOCKS_H
#define ISPCTL_EDID_EDID_BLOCKS_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ispctl {

/// RETURNS the errors of an EDID: size, header, checksum of each block of 128 bytes, number of
/// extension blocks; empty if it is valid. Needed because EDIDToBin sums all blocks as one.
std::vector<std::string> EdidProblems(std::span<const std::uint8_t> edid);

/// RETURNS a few facts, one per line: manufacturer and product, week and year, version, preferred
/// timing, name, extensions. REQUIRES: EdidProblems found nothing.
std::string EdidFacts(std::span<const std::uint8_t> edid);

} // namespace ispctl

#endif
