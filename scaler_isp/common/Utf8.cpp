#include "scaler_isp/common/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

std::uint32_t Byte(char byte) {
    return static_cast<unsigned char>(byte);
}

std::uint32_t Code(wchar_t character) {
    return static_cast<std::uint32_t>(character);
}

bool IsContinuation(char byte) {
    return (Byte(byte) & 0xC0) == 0x80;
}

bool IsUnicode(std::uint32_t code) {
    return code <= 0xD7FF || (code >= 0xE000 && code <= 0x10FFFF);
}

/// Length of a character in UTF-8. UNITS: bytes.
std::size_t SizeOf(std::uint32_t code) {
    return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

/// Decodes the first character. RETURNS its length in bytes; 0 if it is not valid UTF-8.
std::size_t Decode(std::string_view bytes, std::uint32_t &code) {
    code = Byte(bytes.front());
    if (code < 0x80) {
        return 1;
    }
    const std::size_t size = code < 0xE0 ? 2 : code < 0xF0 ? 3 : 4;
    const std::string_view rest = bytes.substr(1, size - 1);
    if (code < 0xC0 || code >= 0xF8 || rest.size() != size - 1 ||
        !std::all_of(rest.begin(), rest.end(), IsContinuation)) {
        return 0;
    }
    code &= 0x7FU >> size;
    for (const char byte : rest) {
        code = code << 6 | (Byte(byte) & 0x3F);
    }
    return IsUnicode(code) && SizeOf(code) == size ? size : 0;
}

void Append(std::uint32_t code, std::string &bytes) {
    const std::size_t size = SizeOf(code);
    // The lead byte has as many high bits set as the character has bytes: 0xC0, 0xE0 or 0xF0.
    const std::uint32_t lead = size == 1 ? 0 : 0xF00U >> size & 0xFF;
    bytes += static_cast<char>(lead | code >> 6 * (size - 1));
    for (std::size_t left = size - 1; left > 0; --left) {
        bytes += static_cast<char>(0x80 | (code >> 6 * (left - 1) & 0x3F));
    }
}

} // namespace

// Tests 64 bytes at a time, because complete files are scanned and nearly all are pure ASCII.
std::size_t AsciiPrefix(std::string_view bytes) {
    std::array<std::uint64_t, 8> block{};
    std::size_t size = 0;
    while (bytes.size() - size >= sizeof block) {
        std::memcpy(block.data(), bytes.data() + size, sizeof block);
        std::uint64_t bits = 0;
        for (const std::uint64_t word : block) {
            bits |= word;
        }
        if ((bits & 0x8080808080808080U) != 0) {
            break;
        }
        size += sizeof block;
    }
    while (size < bytes.size() && Byte(bytes[size]) < 0x80) {
        ++size;
    }
    return size;
}

bool IsUtf8(std::string_view bytes) {
    std::uint32_t code = 0;
    std::size_t size = AsciiPrefix(bytes);
    while (size < bytes.size()) {
        bytes.remove_prefix(size);
        size = Byte(bytes.front()) < 0x80 ? AsciiPrefix(bytes) : Decode(bytes, code);
        if (size == 0) {
            return false;
        }
    }
    return true;
}

bool AppendAsBytes(wchar_t last, std::wstring_view text, std::string &bytes) {
    const std::size_t before = bytes.size();
    bytes.resize(before + text.size());
    char *to = bytes.data() + before;
    std::uint32_t bits = 0; // no early exit, so that the loop is vectorised
    for (const wchar_t character : text) {
        bits |= Code(character);
        *to++ = static_cast<char>(character);
    }
    if (bits <= Code(last)) {
        return true;
    }
    bytes.resize(before);
    return false;
}

bool AppendUtf8(std::wstring_view text, std::string &bytes) {
    if (AppendAsBytes(kLastAscii, text, bytes)) {
        return true;
    }
    for (const wchar_t character : text) {
        if (!IsUnicode(Code(character))) {
            return false;
        }
        Append(Code(character), bytes);
    }
    return true;
}

std::wstring WideFromValidUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        std::uint32_t code = 0;
        bytes.remove_prefix(Decode(bytes, code));
        text += static_cast<wchar_t>(code);
    }
    return text;
}

std::size_t CountUtf8Characters(std::string_view bytes) {
    return bytes.size() -
           static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), IsContinuation));
}
