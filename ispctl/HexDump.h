#ifndef ISPCTL_HEX_DUMP_H
#define ISPCTL_HEX_DUMP_H

#include <cstdint>
#include <span>
#include <string>

namespace ispctl {

/// RETURNS lines of an offset, 16 bytes and their ASCII characters; nothing for no bytes.
std::string HexDump(std::span<const std::uint8_t> bytes);

} // namespace ispctl

#endif
