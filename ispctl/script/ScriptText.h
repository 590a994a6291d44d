#ifndef ISPCTL_SCRIPT_SCRIPT_TEXT_H
#define ISPCTL_SCRIPT_SCRIPT_TEXT_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl {

/// Turns a readable script into its bytes. Statements, one a line; a list in braces may go over
/// lines:
///
///     const kPanel = 0x0120                  a name for a number
///     WriteRegEx kPanel, 0x5A                operands in their order
///     WriteRegEx addr = kPanel, value = 0x5A or by name
///     WriteRegs 0x10, 1, {0x01, 0x02}        data bytes last; the length follows from them
///     WriteRegs addr = 0x10, inc = 1, data = {0x01, 0x02}
///     bytes {0x1B, 0xFF}                     bytes as they are
/// Throws ScriptError.
std::vector<std::uint8_t> AssembleScript(std::string_view text);

/// RETURNS a text that AssembleScript turns into exactly these bytes, whatever they are.
std::string ListScript(std::span<const std::uint8_t> script);

/// RETURNS the script as a byte list of the toolkit, a record a line.
std::string ByteListOfScript(std::span<const std::uint8_t> script);

} // namespace ispctl

#endif
