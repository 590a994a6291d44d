#include "JsonText.h"

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

/// Throws nlohmann::json::type_error for a string that is not valid UTF-8.
std::string Dump(const Json &value, int indent, Charset charset) {
    const std::string dumped = value.dump(indent, ' ', charset == Charset::Ascii);
    std::string text;
    text.reserve(dumped.size() + 1);
    for (std::string_view rest = dumped; !rest.empty();) {
        const FirstCharacter first = DecodeFirst(rest);
        // A newline is the layout's: within strings it is escaped already.
        if (IsControl(first.value) && first.value != U'\n') {
            text += JsonEscape(first.value);
        } else {
            text += rest.substr(0, first.length);
        }
        rest.remove_prefix(first.length);
    }
    return text + "\n";
}

} // namespace

Json JsonString(std::string_view bytes) {
    return EscapeBytes(bytes).text;
}

Json StringOrNull(std::string_view bytes) {
    return bytes.empty() ? Json(nullptr) : JsonString(bytes);
}

void SetText(Json &object, const char *key, const std::string &bytes) {
    const EscapedText text = EscapeBytes(bytes);
    object[key] = text.text;
    if (text.escaped) {
        object["escaped"].push_back(key);
    }
}

std::string JsonLine(const Json &value, Charset charset) {
    return Dump(value, -1, charset);
}

std::string JsonDocument(const Json &value, Charset charset) {
    constexpr int kIndent = 2;
    return Dump(value, kIndent, charset);
}

} // namespace ispctl
