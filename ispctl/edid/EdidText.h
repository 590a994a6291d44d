#ifndef ISPCTL_EDID_EDID_TEXT_H
#define ISPCTL_EDID_EDID_TEXT_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ispctl {

/// The format of an EDID in a file.
enum class EdidForm {
    Binary,   ///< raw bytes
    Hex,      ///< two hexadecimal digits per byte; whitespace is ignored
    ByteList, ///< the byte list of the C++ API: "0x00, 0xFF" with comments
};

/// Binary if the EDID header comes first or there are control characters, hex if there are only
/// hexadecimal digits and whitespace, otherwise a byte list.
EdidForm DetectEdidFormat(std::string_view bytes);

/// Converts an EDID of any format to a byte list. RETURNS nothing for an odd number of digits.
std::optional<std::string> ByteListOfEdid(std::string_view bytes, EdidForm form);

/// RETURNS a byte list with 16 bytes per line and a comment before each block.
std::string WriteEdidText(std::span<const std::uint8_t> edid);

} // namespace ispctl

#endif
