#include "common/Text.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace virtual_scaler {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string &text, char32_t character) {
    if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
        character = kReplacement;
    }
    const auto tail = [&](unsigned shift) {
        text += static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0U | (character >> 6));
        tail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0U | (character >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0U | (character >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

struct Decoded {
    char32_t character;
    std::size_t length;
};

/// Decodes the first character. REQUIRES: text is not empty.
Decoded DecodeUtf8(std::string_view text) {
    static constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return {kReplacement, 1};
    }
    char32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto tail = static_cast<unsigned char>(text[i]);
        if ((tail & 0xC0U) != 0x80U) {
            return {kReplacement, 1};
        }
        character = (character << 6) | (tail & 0x3FU);
    }
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < kSmallest[length] || character > 0x10FFFF || surrogate) {
        return {kReplacement, 1};
    }
    return {character, length};
}

int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return 16;
}

} // namespace

std::string FromWide(const wchar_t *field, std::size_t bound) {
    std::string text;
    for (std::size_t i = 0; i < bound && field[i] != 0; ++i) {
        AppendUtf8(text, static_cast<char32_t>(field[i]));
    }
    return text;
}

std::string FromNarrow(const char *field, std::size_t bound) {
    std::size_t length = 0;
    while (length < bound && field[length] != 0) {
        ++length;
    }
    return {field, length};
}

std::wstring ToWide(std::string_view utf8) {
    std::wstring wide;
    while (!utf8.empty()) {
        const Decoded decoded = DecodeUtf8(utf8);
        wide += static_cast<wchar_t>(decoded.character);
        utf8.remove_prefix(decoded.length);
    }
    return wide;
}

std::string Format(const char *format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            quoted += Format("\\x%02X", static_cast<unsigned>(byte));
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

std::string HexBytes(const std::uint8_t *bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += Format(i == 0 ? "%02X" : " %02X", static_cast<unsigned>(bytes[i]));
    }
    return text;
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kWhitespace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kWhitespace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kWhitespace) - first + 1);
}

bool ParseNumber(std::string_view text, std::uint32_t maximum, std::uint32_t &number) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) {
        return false;
    }
    std::uint64_t value = 0;
    for (const char c : text) {
        const int digit = DigitValue(c);
        if (digit >= base) {
            return false;
        }
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        if (value > maximum) {
            return false;
        }
    }
    number = static_cast<std::uint32_t>(value);
    return true;
}

} // namespace virtual_scaler
