#include <algorithm>
#include <fmt/format.h>

#include "edid/input/Numbers.h"

namespace ispctl::edid {
namespace {

constexpr std::string_view kSeparators = " \t\r\n\v\f,;{}[]()\"'\\";
constexpr unsigned int kMaxByte = 255;
// From this length on, digits after 0x are bytes in a row and not one number.
constexpr std::size_t kDigitsOfRow = 16;
constexpr std::size_t kPaddedDigits = 3;
constexpr std::string_view kSecondOctal = "0377"; ///< the second byte of an EDID as C writes it

bool IsDecimal(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool HasHexPrefix(std::string_view text) {
    return text.starts_with("0x") || text.starts_with("0X") || text.starts_with('x');
}

unsigned int DecimalValue(std::string_view digits) {
    unsigned int value = 0;
    for (const char c : digits) {
        value = std::min(value * 10 + HexValue(c), kMaxByte + 1);
    }
    return value;
}

/// RETURNS whether all numbers are decimal with three digits, so that a zero in front does not mean
/// octal.
bool ArePadded(const std::vector<Token> &tokens) {
    return std::all_of(tokens.begin(), tokens.end(), [](const Token &token) {
        return token.text.size() == kPaddedDigits && IsDecimal(token.text) &&
               DecimalValue(token.text) <= kMaxByte;
    });
}

class NumberReader {
  public:
    NumberReader(bool padded, Bytes &bytes) : m_padded(padded), m_bytes(bytes) {}

    void Read(Token token) {
        const Token whole = token;
        const bool negative = token.text.starts_with('-');
        Drop(token, negative ? 1 : 0);
        unsigned int radix = 10;
        if (HasHexPrefix(token.text)) {
            radix = 16;
            Drop(token, token.text[0] == 'x' ? 1 : 2);
        } else if (token.text.size() > 1 && token.text[0] == '0' && !m_padded) {
            radix = 8;
        }
        while (!token.text.empty() &&
               std::string_view("uUlL").find(token.text.back()) != std::string_view::npos) {
            token.text.remove_suffix(1);
        }
        if (token.text.empty()) {
            throw SyntaxError(whole.offset, fmt::format("{} is not a number", whole.text));
        }
        if (radix == 16 && token.text.size() >= kDigitsOfRow) {
            const Bytes row = ParseHex(token.text, token.offset);
            m_bytes.insert(m_bytes.end(), row.begin(), row.end());
            return;
        }
        const unsigned int value = Value(token, radix);
        if (value > (negative ? kMaxByte / 2 + 1 : kMaxByte)) {
            throw SyntaxError(whole.offset,
                              negative ? fmt::format("{} is less than -128", whole.text)
                                       : fmt::format("{} is greater than 255", whole.text));
        }
        m_bytes.push_back(static_cast<std::uint8_t>(negative ? 0U - value : value));
    }

  private:
    static void Drop(Token &token, std::size_t count) {
        token.text.remove_prefix(count);
        token.offset += count;
    }

    static unsigned int Value(const Token &token, unsigned int radix) {
        unsigned int value = 0;
        for (std::size_t i = 0; i < token.text.size(); ++i) {
            const char c = token.text[i];
            if (!IsHexDigit(c) || HexValue(c) >= radix) {
                throw SyntaxError(token.offset + i,
                                  fmt::format("{} is not {} digit", QuoteCharacter(token.text, i),
                                              radix == 16  ? "a hexadecimal"
                                              : radix == 8 ? "an octal"
                                                           : "a decimal"));
            }
            value = std::min(value * radix + HexValue(c), 2 * kMaxByte);
        }
        return value;
    }

    bool m_padded;
    Bytes &m_bytes;
};

/// RETURNS what is between the first brace and the one that closes it; everything if there is
/// none.
Token BetweenBraces(std::string_view text, std::size_t offset) {
    const std::size_t open = text.find('{');
    if (open == std::string_view::npos) {
        return {text, offset};
    }
    std::size_t end = open;
    int depth = 0;
    do {
        depth += text[end] == '{' ? 1 : text[end] == '}' ? -1 : 0;
        ++end;
    } while (depth > 0 && end < text.size());
    return {text.substr(open, end - open), offset + open};
}

} // namespace

bool AreDecimal(std::string_view text) {
    std::size_t threeDigits = 0;
    std::size_t letters = 0;
    bool areAllPairs = true;
    std::size_t longest = 0;
    const auto tokens = Split(text, 0, kSeparators);
    if (tokens.size() > 1 && tokens[1].text == kSecondOctal) {
        return true;
    }
    for (const Token &token : tokens) {
        const bool isDecimal = IsDecimal(token.text);
        threeDigits += isDecimal && token.text.size() == kPaddedDigits ? 1U : 0U;
        letters += !isDecimal && IsHex(token.text) ? 1U : 0U;
        areAllPairs = areAllPairs && token.text.size() == 2;
        longest = std::max(longest, isDecimal ? token.text.size() : 0);
    }
    return longest <= kPaddedDigits && !areAllPairs && threeDigits > letters;
}

Bytes ParseList(std::string_view text, std::size_t offset) {
    const Token body = BetweenBraces(text, offset);
    const auto tokens = Split(body.text, body.offset, kSeparators);
    Bytes bytes;
    NumberReader reader(ArePadded(tokens), bytes);
    for (const Token &token : tokens) {
        reader.Read(token);
    }
    return bytes;
}

} // namespace ispctl::edid
