#include "scaler_isp/common/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

/// The lead bytes of the sequences that are longer than one byte. The first continuation byte has a
/// range of its own: it excludes longer forms, surrogates and what is above U+10FFFF.
struct LeadBytes {
    unsigned char first;
    unsigned char last;
    std::size_t size; ///< UNITS: bytes of the sequence
    unsigned char lowestNext;
    unsigned char highestNext;
};
constexpr LeadBytes kLeadBytes[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

unsigned int Byte(char byte) {
    return static_cast<unsigned char>(byte);
}

bool IsContinuation(char byte) {
    return (Byte(byte) & 0xC0U) == 0x80U;
}

/// Size of the character at the beginning, which is not ASCII; 0 if the bytes are not UTF-8.
std::size_t SequenceSize(std::string_view bytes) {
    const unsigned int lead = Byte(bytes.front());
    for (const LeadBytes &row : kLeadBytes) {
        if (lead < row.first || lead > row.last) {
            continue;
        }
        const bool valid =
            bytes.size() >= row.size && Byte(bytes[1]) >= row.lowestNext &&
            Byte(bytes[1]) <= row.highestNext &&
            std::all_of(bytes.begin() + 2, bytes.begin() + static_cast<std::ptrdiff_t>(row.size),
                        IsContinuation);
        return valid ? row.size : 0;
    }
    return 0;
}

bool IsUnicode(std::uint32_t code) {
    return code <= 0xD7FF || (code >= 0xE000 && code <= 0x10FFFF);
}

void AppendSequence(std::uint32_t code, std::string &bytes) {
    const auto append = [&](std::uint32_t byte) { bytes += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
        return;
    }
    if (code < 0x800) {
        append(0xC0 | code >> 6);
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
    } else {
        append(0xF0 | code >> 18);
        append(0x80 | (code >> 12 & 0x3F));
        append(0x80 | (code >> 6 & 0x3F));
    }
    append(0x80 | (code & 0x3F));
}

} // namespace

// Whole blocks first: nearly every text is ASCII only, and the library looks at complete files.
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

std::size_t AsciiPrefix(std::wstring_view text) {
    const auto isAscii = [](wchar_t character) {
        return character >= 0 && character <= kLastAscii;
    };
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isAscii) -
                                    text.begin());
}

bool IsUtf8(std::string_view bytes) {
    for (bytes.remove_prefix(AsciiPrefix(bytes)); !bytes.empty();
         bytes.remove_prefix(AsciiPrefix(bytes))) {
        const std::size_t size = SequenceSize(bytes);
        if (size == 0) {
            return false;
        }
        bytes.remove_prefix(size);
    }
    return true;
}

bool AppendAsBytes(wchar_t last, std::wstring_view text, std::string &bytes) {
    const std::size_t before = bytes.size();
    bytes.resize(before + text.size());
    char *to = bytes.data() + before;
    std::uint32_t bits = 0; // a loop without a way out runs on several characters at a time
    for (const wchar_t character : text) {
        bits |= static_cast<std::uint32_t>(character);
        *to++ = static_cast<char>(character);
    }
    if (bits <= static_cast<std::uint32_t>(last)) {
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
        const auto code = static_cast<std::uint32_t>(character);
        if (!IsUnicode(code)) {
            return false;
        }
        AppendSequence(code, bytes);
    }
    return true;
}

std::wstring WideFromValidUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t ascii = AsciiPrefix(bytes);
        text.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(ascii));
        bytes.remove_prefix(ascii);
        if (bytes.empty()) {
            break;
        }
        const std::size_t size = SequenceSize(bytes);
        std::uint32_t code = Byte(bytes.front()) & (0xFFU >> (size + 1));
        for (std::size_t i = 1; i < size; ++i) {
            code = code << 6 | (Byte(bytes[i]) & 0x3FU);
        }
        text += static_cast<wchar_t>(code);
        bytes.remove_prefix(size);
    }
    return text;
}

std::size_t CountUtf8Characters(std::string_view bytes) {
    return bytes.size() -
           static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), IsContinuation));
}
