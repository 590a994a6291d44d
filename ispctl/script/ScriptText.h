#ifndef ISPCTL_SCRIPT_SCRIPT_TEXT_H
#define ISPCTL_SCRIPT_SCRIPT_TEXT_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl {

/// Assembles script text into bytes. One statement per line; a list in braces may span lines:
///
///     const kPanel = 0x0120                  a named number
///     WriteRegEx kPanel, 0x5A                positional operands
///     WriteRegEx addr = kPanel, value = 0x5A named operands
///     WriteRegs 0x10, 1, {0x01, 0x02}        data bytes last; the length is computed
///     WriteRegs addr = 0x10, inc = 1, data = {0x01, 0x02}
///     bytes {0x1B, 0xFF}                     raw bytes
/// Throws ScriptError.
std::vector<std::uint8_t> AssembleScript(std::string_view text);

/// RETURNS text that AssembleScript converts back to exactly these bytes, even if they are not
/// valid records.
std::string ListScript(std::span<const std::uint8_t> script);

/// RETURNS the script as a byte list of the C++ API, one record per line.
std::string ByteListOfScript(std::span<const std::uint8_t> script);

} // namespace ispctl

#endif
