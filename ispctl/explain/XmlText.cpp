#include "explain/XmlText.h"

#include <fmt/format.h>

#include "Utf8.h"
#include "VisibleText.h"

namespace ispctl {
namespace {

// The noncharacters that XML 1.0 forbids although UTF-8 can express them.
bool IsForbidden(char32_t value) {
    return value == 0xFFFE || value == 0xFFFF;
}

std::string_view ReferenceOf(char byte) {
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return "";
    }
}

} // namespace

std::string XmlText(std::string_view bytes) {
    const std::string visible = Visible(bytes, Layout::OneLine, Charset::Utf8);
    std::string text;
    for (std::string_view rest = visible; !rest.empty();) {
        const FirstCharacter first = DecodeFirst(rest);
        const std::string_view reference = ReferenceOf(rest.front());
        if (!reference.empty()) {
            text += reference;
        } else if (IsForbidden(first.value)) {
            text += fmt::format("\\u{{{:X}}}", static_cast<unsigned>(first.value));
        } else {
            text += rest.substr(0, first.length);
        }
        rest.remove_prefix(first.length);
    }
    return text;
}

} // namespace ispctl
