#include "line/NumberText.h"

#include <limits>

namespace ispctl {
namespace {

constexpr std::uint64_t kLargestPositive = std::numeric_limits<std::int64_t>::max();

/// The value of a digit; 36 and more for any other character.
unsigned DigitValue(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<unsigned>(c - '0');
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'z' ? static_cast<unsigned>(lower - 'a') + 10 : 36;
}

bool IsHexPrefix(std::string_view text) {
    return text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x' && DigitValue(text[2]) < 16;
}

/// Reads the digits from number.end on; the magnitude saturates.
void ReadDigits(std::string_view text, unsigned base, NumberText &number) {
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    for (; number.end < text.size(); ++number.end) {
        const unsigned digit = DigitValue(text[number.end]);
        if (digit >= base) {
            break;
        }
        number.hasDigits = true;
        const bool fits = number.magnitude <= (kMax - digit) / base;
        number.magnitude = fits ? number.magnitude * base + digit : kMax;
    }
}

/// As a conversion to 64 bits that saturates, and then to 32 bits that truncates.
std::int32_t Store(const NumberText &number) {
    const std::uint64_t limit = number.isNegative ? kLargestPositive + 1 : kLargestPositive;
    const std::uint64_t magnitude = number.magnitude < limit ? number.magnitude : limit;
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(number.isNegative ? 0 - magnitude : magnitude));
}

} // namespace

NumberText ReadNumberText(std::string_view text) {
    NumberText number;
    const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
    number.end = begin == std::string_view::npos ? text.size() : begin;
    if (number.end < text.size() && (text[number.end] == '-' || text[number.end] == '+')) {
        number.isNegative = text[number.end] == '-';
        ++number.end;
    }
    const std::string_view digits = text.substr(number.end);
    unsigned base = 10;
    if (IsHexPrefix(digits)) {
        base = 16;
        number.end += 2;
    } else if (digits.size() > 1 && digits[0] == '0') {
        base = 8;
    }
    ReadDigits(text, base, number);
    number.isOctal = base == 8 && number.magnitude != 0;
    number.isComplete = text.empty() || (number.hasDigits && number.end == text.size());
    number.isHuge = number.magnitude > std::numeric_limits<std::uint32_t>::max();
    number.stored = Store(number);
    return number;
}

} // namespace ispctl
