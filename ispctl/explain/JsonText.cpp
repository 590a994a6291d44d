#include "explain/JsonText.h"

#include <fmt/format.h>

#include "Utf8.h"

namespace ispctl {
namespace {

std::string JsonEscape(char32_t value) {
    const auto number = static_cast<unsigned>(value);
    return number < 0x10000U
               ? fmt::format("\\u{:04x}", number)
               : fmt::format("\\u{:04x}\\u{:04x}", 0xD800U + ((number - 0x10000U) >> 10U),
                             0xDC00U + ((number - 0x10000U) & 0x3FFU));
}

} // namespace

nlohmann::ordered_json JsonString(std::string_view bytes) {
    return EscapeBytes(bytes).text;
}

std::string JsonDocument(const nlohmann::ordered_json &document, Charset charset) {
    const std::string dumped = document.dump(2, ' ', charset == Charset::Ascii);
    std::string text;
    text.reserve(dumped.size() + 1);
    for (std::string_view rest = dumped; !rest.empty();) {
        const FirstCharacter first = DecodeFirst(rest);
        // Newlines are the layout's: within strings they are escaped already.
        if (IsControl(first.value) && first.value != U'\n') {
            text += JsonEscape(first.value);
        } else {
            text += rest.substr(0, first.length);
        }
        rest.remove_prefix(first.length);
    }
    return text + "\n";
}

} // namespace ispctl
