#ifndef ISPCTL_EDID_INPUT_NUMBERS_H
#define ISPCTL_EDID_INPUT_NUMBERS_H

#include "edid/EdidBytes.h"
#include "edid/input/SourceText.h"

namespace ispctl::edid {

// All parse text without comments and throw SyntaxError.
// \param offset  of text in the complete text

/// Hexadecimal digits, two per byte, with or without spaces, commas, colons and the like.
Bytes ParseHex(std::string_view text, std::size_t offset);

/// Numbers as in C (0xFF, 255, 0377), as \xFF, or decimal ones that are padded with zeros. If
/// there are braces, only what is between the first pair counts.
Bytes ParseList(std::string_view text, std::size_t offset);

/// RETURNS whether numbers without 0x are decimal or octal and not hexadecimal.
bool AreDecimal(std::string_view text);

} // namespace ispctl::edid

#endif
