#ifndef ISPCTL_EDID_EDID_TEXT_H
#define ISPCTL_EDID_EDID_TEXT_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ispctl {

/// How an EDID is written in a file.
enum class EdidForm {
    Binary,   ///< its bytes
    Hex,      ///< two hexadecimal digits a byte, with or without blanks and line ends
    ByteList, ///< the toolkit's text: "0x00, 0xFF" with comments
};

/// Binary: the bytes of the EDID header come first, or there are bytes that no text has. Hex:
/// nothing but hexadecimal digits, blanks and line ends. Everything else is a byte list.
EdidForm DetectEdidFormat(std::string_view bytes);

/// Turns an EDID of any form into the toolkit's text. RETURNS nothing for an odd number of digits.
std::optional<std::string> ByteListOfEdid(std::string_view bytes, EdidForm form);

/// RETURNS a byte list with 16 bytes a line and a comment in front of each block.
std::string WriteEdidText(std::span<const std::uint8_t> edid);

} // namespace ispctl

#endif
