#include "VisibleText.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

#include "Utf8.h"

namespace ispctl {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range kControls[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},   {0x200E, 0x200F},
    {0x2028, 0x202E}, {0x2066, 0x2069}, {0xE0000, 0xE007F},
};

constexpr std::array<std::string_view, 3> kColours{"\033[31m", "\033[32m", "\033[m"};

bool Stays(char32_t value, Layout layout) {
    return layout == Layout::Lines && (value == U'\n' || value == U'\t');
}

// Appends the first character of bytes, escaped if necessary. RETURNS its length in bytes.
std::size_t AppendFirst(std::string &shown, std::string_view bytes, Layout layout,
                        Charset charset) {
    const FirstCharacter first = DecodeFirst(bytes);
    const bool control = first.length > 0 && IsControl(first.value) && !Stays(first.value, layout);
    if (first.length == 0 || (control && first.length == 1)) {
        shown += fmt::format("\\x{:02X}", static_cast<unsigned char>(bytes.front()));
        return 1;
    }
    if (control || (charset == Charset::Ascii && first.length > 1)) {
        shown += fmt::format("\\u{{{:X}}}", static_cast<std::uint32_t>(first.value));
    } else {
        shown += bytes.substr(0, first.length);
    }
    return first.length;
}

// RETURNS the length of the colour sequence at the start of bytes; 0 if there is none.
std::size_t ColourLength(std::string_view bytes) {
    const auto *found = std::find_if(kColours.begin(), kColours.end(),
                                     [&](std::string_view c) { return bytes.starts_with(c); });
    return found != kColours.end() ? found->size() : 0;
}

bool CanBecomeColour(std::string_view bytes) {
    return std::any_of(kColours.begin(), kColours.end(),
                       [&](std::string_view c) { return c.starts_with(bytes); });
}

} // namespace

bool IsControl(char32_t value) {
    return std::any_of(std::begin(kControls), std::end(kControls),
                       [&](Range range) { return value >= range.first && value <= range.last; });
}

std::string Visible(std::string_view bytes, Layout layout, Charset charset) {
    std::string shown;
    while (!bytes.empty()) {
        bytes.remove_prefix(AppendFirst(shown, bytes, layout, charset));
    }
    return shown;
}

std::string VisibleStream::Add(std::string_view bytes) {
    m_pending += bytes;
    return Convert(false);
}

std::string VisibleStream::Finish() {
    return Convert(true);
}

std::string VisibleStream::Convert(bool complete) {
    std::string shown;
    std::string_view rest = m_pending;
    while (!rest.empty()) {
        const std::size_t colour = ColourLength(rest);
        if (rest.front() == '\0' && m_nul == Nul::Keep) {
            shown += '\0';
            rest.remove_prefix(1);
        } else if (colour > 0) {
            shown += rest.substr(0, m_colours == Colours::Keep ? colour : 0);
            rest.remove_prefix(colour);
        } else if (!complete && (CanBecomeColour(rest) || UnfinishedTail(rest) == rest.size())) {
            break;
        } else {
            rest.remove_prefix(AppendFirst(shown, rest, Layout::Lines, m_charset));
        }
    }
    m_pending.erase(0, m_pending.size() - rest.size());
    return shown;
}

} // namespace ispctl
