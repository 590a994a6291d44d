#include <algorithm>

#include "edid/input/Numbers.h"

namespace ispctl::edid {
namespace {

constexpr std::string_view kWhitespace = " \t\r\n\v\f";
constexpr std::string_view kSeparators = " \t\r\n\v\f,;:-\"'\\[](){}";
constexpr const char *kOdd = "an odd number of hexadecimal digits";

void RequireDigits(const Token &token) {
    if (token.text == "*") {
        throw SyntaxError(token.offset, "without offsets nobody knows how many lines this * stands "
                                        "for; use od -v or xxd");
    }
    for (std::size_t i = 0; i < token.text.size(); ++i) {
        if (!IsHexDigit(token.text[i])) {
            throw SyntaxError(token.offset + i,
                              QuoteCharacter(token.text, i) + " is not a hexadecimal digit");
        }
    }
}

void AppendPairs(std::string_view digits, Bytes &bytes) {
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(
            static_cast<std::uint8_t>(HexValue(digits[i]) * 16 + HexValue(digits[i + 1])));
    }
}

/// Digits that are broken into lines anywhere.
Bytes JoinDigits(const std::vector<Token> &tokens) {
    std::string digits;
    const Token *odd = nullptr;
    for (const Token &token : tokens) {
        digits += token.text;
        odd = token.text.size() % 2 != 0 ? &token : odd;
    }
    if (digits.size() % 2 != 0) {
        throw SyntaxError(odd->offset, kOdd);
    }
    Bytes bytes;
    AppendPairs(digits, bytes);
    return bytes;
}

} // namespace

Bytes ParseHex(std::string_view text, std::size_t offset) {
    const auto tokens = Split(text, offset, kSeparators);
    std::size_t longest = 0;
    for (const Token &token : tokens) {
        RequireDigits(token);
        longest = std::max(longest, token.text.size());
    }
    const bool onlySpaces =
        text.find_first_of(kSeparators.substr(kWhitespace.size())) == std::string_view::npos;
    if (longest != 2 && onlySpaces) {
        return JoinDigits(tokens);
    }
    Bytes bytes;
    for (const Token &token : tokens) {
        if (longest <= 2 && token.text.size() == 1) {
            bytes.push_back(static_cast<std::uint8_t>(HexValue(token.text[0])));
        } else if (token.text.size() % 2 != 0) {
            throw SyntaxError(token.offset, kOdd);
        }
        AppendPairs(token.text, bytes);
    }
    return bytes;
}

} // namespace ispctl::edid
