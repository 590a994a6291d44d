#include "line/DisplayWidth.h"

#include <algorithm>
#include <iterator>

#include "Utf8.h"

namespace ispctl {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// The C library's answer depends on the locale, and this program stays in the locale C.
constexpr Range kCombining[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200D},
    {0x20D0, 0x20FF}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF},
};
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

template <std::size_t N> bool IsIn(const Range (&ranges)[N], char32_t value) {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [&](Range range) { return value >= range.first && value <= range.last; });
}

} // namespace

std::size_t DisplayWidth(char32_t value) {
    return IsIn(kCombining, value) ? 0 : IsIn(kWide, value) ? 2 : 1;
}

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        const FirstCharacter first = DecodeFirst(text);
        width += first.length > 0 ? DisplayWidth(first.value) : 1;
        text.remove_prefix(std::max<std::size_t>(first.length, 1));
    }
    return width;
}

} // namespace ispctl
