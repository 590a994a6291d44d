#ifndef ISPCTL_LINE_NUMBER_TEXT_H
#define ISPCTL_LINE_NUMBER_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ispctl {

/// A value as the library's conversion reads it: white space, a sign, then decimal digits,
/// hexadecimal ones after 0x, or octal ones after a leading zero.
struct NumberText {
    bool hasDigits = false;
    bool isComplete = false; ///< nothing follows the digits; the empty text is 0, too
    bool isOctal = false;    ///< a leading zero changes what the digits mean
    bool isNegative = false;
    bool isHuge = false;         ///< more than 32 bits; the value is then truncated or saturated
    std::uint64_t magnitude = 0; ///< without the sign; the largest value if it does not fit
    std::int32_t stored = 0;     ///< what the library stores
    std::size_t end = 0;         ///< UNITS: bytes; where the first character that is no digit is
};

NumberText ReadNumberText(std::string_view text);

} // namespace ispctl

#endif
