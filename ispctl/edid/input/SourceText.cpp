#include "edid/input/SourceText.h"

#include <algorithm>
#include <fmt/format.h>

#include "Utf8.h"

namespace ispctl::edid {
namespace {

constexpr std::string_view kWhitespace = " \t\r\n\v\f";

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

std::optional<std::string> FromUtf16(std::string_view content, bool isBigEndian) {
    if (content.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t i = 2; i < content.size(); i += 2) {
        const auto first = static_cast<unsigned char>(content[i]);
        const auto second = static_cast<unsigned char>(content[i + 1]);
        const unsigned int unit = isBigEndian ? first * 256U + second : second * 256U + first;
        if (unit < 0x20 && kWhitespace.find(static_cast<char>(unit)) == std::string_view::npos) {
            return std::nullopt;
        }
        // What is not ASCII can only be part of a comment, or is wrong whatever it is.
        text += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return text;
}

/// RETURNS the index after a comment that starts at begin; begin if none does.
std::size_t EndOfComment(std::string_view text, std::size_t begin) {
    if (text.substr(begin, 2) == "/*") {
        const std::size_t end = text.find("*/", begin + 2);
        return end == std::string_view::npos ? text.size() : end + 2;
    }
    const bool isLine = text[begin] == '#' || text.substr(begin, 2) == "//";
    return isLine ? std::min(text.find('\n', begin), text.size()) : begin;
}

} // namespace

Position LineAndColumn(std::string_view text, std::size_t offset) {
    Position position;
    for (const char c : text.substr(0, offset)) {
        if (c == '\n') {
            ++position.line;
            position.column = 1;
        } else if (!IsContinuation(c)) {
            ++position.column;
        }
    }
    return position;
}

std::vector<Token> Split(std::string_view text, std::size_t offset, std::string_view separators) {
    std::vector<Token> tokens;
    std::size_t begin = 0;
    while ((begin = text.find_first_not_of(separators, begin)) != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        tokens.push_back({text.substr(begin, end - begin), offset + begin});
        begin = end;
    }
    return tokens;
}

std::vector<Token> SplitLines(std::string_view text) {
    std::vector<Token> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back({text.substr(begin, end - begin), begin});
        begin = end + 1;
    }
    return lines;
}

std::string_view TrimSpaces(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kWhitespace);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kWhitespace) + 1 - first);
}

bool IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

unsigned int HexValue(char digit) {
    const int value = digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10;
    return static_cast<unsigned int>(value);
}

bool IsHex(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsHexDigit);
}

std::string BlankComments(std::string_view text) {
    std::string blanked(text);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t end = EndOfComment(text, i);
        if (end == i) {
            ++i;
        }
        for (; i < end; ++i) {
            blanked[i] = text[i] == '\n' ? '\n' : ' ';
        }
    }
    return blanked;
}

std::string QuoteCharacter(std::string_view text, std::size_t offset) {
    const std::size_t length = std::max<std::size_t>(DecodeFirst(text.substr(offset)).length, 1);
    return fmt::format("\"{}\"", text.substr(offset, length));
}

std::optional<std::string> WithoutByteOrderMark(std::string_view content) {
    if (content.starts_with("\xEF\xBB\xBF")) {
        return std::string(content.substr(3));
    }
    if (content.starts_with("\xFF\xFE")) {
        return FromUtf16(content, false);
    }
    if (content.starts_with("\xFE\xFF")) {
        return FromUtf16(content, true);
    }
    return std::string(content);
}

} // namespace ispctl::edid
