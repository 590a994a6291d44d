#include "Utf8.h"

#include <fmt/format.h>

namespace ispctl {
namespace {

static_assert(sizeof(wchar_t) == 4, "wide characters are 32 bits wide");

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// RETURNS the length that the first byte of a character encodes; 0 if it cannot be a first byte.
std::size_t AnnouncedLength(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte < 0x80U) {
        return 1;
    }
    if (byte >= 0xC2U && byte <= 0xDFU) {
        return 2;
    }
    if (byte >= 0xE0U && byte <= 0xEFU) {
        return 3;
    }
    return byte >= 0xF0U && byte <= 0xF4U ? 4 : 0;
}

bool IsScalar(char32_t value) {
    return value <= 0x10FFFFU && (value < 0xD800U || value > 0xDFFFU);
}

void Append(std::string &text, char32_t value) {
    const auto tail = [&](unsigned shift) {
        text += static_cast<char>(0x80U | ((value >> shift) & 0x3FU));
    };
    if (value < 0x80U) {
        text += static_cast<char>(value);
    } else if (value < 0x800U) {
        text += static_cast<char>(0xC0U | (value >> 6U));
        tail(0);
    } else if (value < 0x10000U) {
        text += static_cast<char>(0xE0U | (value >> 12U));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0U | (value >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

FirstCharacter DecodeFirst(std::string_view bytes) {
    const std::size_t length = AnnouncedLength(bytes.front());
    if (length == 0 || length > bytes.size()) {
        return {};
    }
    constexpr unsigned kPayloadOfFirst[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t value = static_cast<unsigned char>(bytes.front()) & kPayloadOfFirst[length];
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(bytes[i])) {
            return {};
        }
        value = (value << 6U) | (static_cast<unsigned char>(bytes[i]) & 0x3FU);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return value >= kSmallest[length] && IsScalar(value) ? FirstCharacter{value, length}
                                                         : FirstCharacter{};
}

std::optional<std::wstring> WideFromUtf8(std::string_view bytes) {
    std::wstring text;
    while (!bytes.empty()) {
        const FirstCharacter character = DecodeFirst(bytes);
        if (character.length == 0) {
            return std::nullopt;
        }
        text += static_cast<wchar_t>(character.value);
        bytes.remove_prefix(character.length);
    }
    return text;
}

EscapedText EscapeBytes(std::string_view bytes) {
    if (WideFromUtf8(bytes)) {
        return {std::string(bytes), false};
    }
    EscapedText result{"", true};
    while (!bytes.empty()) {
        const std::size_t length = DecodeFirst(bytes).length;
        if (length == 0) {
            result.text += fmt::format("\\x{:02X}", static_cast<unsigned char>(bytes.front()));
        } else if (bytes.front() == '\\') {
            result.text += "\\\\";
        } else {
            result.text += bytes.substr(0, length);
        }
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

EscapedText EscapeWide(std::wstring_view text) {
    EscapedText result;
    for (const wchar_t character : text) {
        result.escaped = result.escaped || !IsScalar(static_cast<char32_t>(character));
    }
    for (const wchar_t character : text) {
        const auto value = static_cast<char32_t>(character);
        if (!IsScalar(value)) {
            result.text += fmt::format("\\x{{{:X}}}", static_cast<std::uint32_t>(value));
        } else if (result.escaped && value == U'\\') {
            result.text += "\\\\";
        } else {
            Append(result.text, value);
        }
    }
    return result;
}

std::size_t UnfinishedTail(std::string_view bytes) {
    for (std::size_t tail = 1; tail <= 3 && tail <= bytes.size(); ++tail) {
        const char byte = bytes[bytes.size() - tail];
        if (!IsContinuation(byte)) {
            return AnnouncedLength(byte) > tail ? tail : 0;
        }
    }
    return 0;
}

} // namespace ispctl
