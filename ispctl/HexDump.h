#ifndef ISPCTL_HEX_DUMP_H
#define ISPCTL_HEX_DUMP_H

#include <cstdint>
#include <span>
#include <string>

namespace ispctl {

/// RETURNS one line per 16 bytes: offset, hexadecimal digits, ASCII characters; empty for no bytes.
std::string HexDump(std::span<const std::uint8_t> bytes);

} // namespace ispctl

#endif
