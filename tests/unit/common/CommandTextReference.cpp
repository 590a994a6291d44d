#include "unit/common/CommandTextReference.h"

#include <cstdlib>
#include <numeric>

namespace reference {
namespace {

const std::wstring kWordCharacters =
    L"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";

bool Has(const std::wstring &set, wchar_t c) {
    return set.find(c) != std::wstring::npos;
}

bool OnlyHas(const std::wstring &set, const std::wstring &word) {
    return word.find_first_not_of(set) == std::wstring::npos;
}

std::wstring From(const std::wstring &text, std::size_t pos, std::size_t count) {
    return pos < text.size() ? text.substr(pos, count) : L"";
}

/// The word as it lies in the buffer of 256 characters into which words are copied.
Token NextBufferedToken(const std::wstring &text, std::size_t pos) {
    Token token = NextToken(text, pos);
    token.word = token.word.substr(0, 256);
    return token;
}

bool StartsAsHex(const std::wstring &word) {
    return From(word, 0, 2) == L"0x" || From(word, 0, 2) == L"0X";
}

/// The whole word as strtol reads it, cut to 32 bits.
std::optional<unsigned int> WholeNumber(const std::wstring &word) {
    const std::string narrow(word.begin(), word.end());
    char *end = nullptr;
    const long number = std::strtol(narrow.c_str(), &end, 0);
    if (*end != '\0') {
        return std::nullopt;
    }
    return static_cast<unsigned int>(number);
}

std::optional<unsigned int> NumberOrName(const std::wstring &word, const std::wstring *defines) {
    if (StartsAsHex(word)) {
        if (const auto number = WholeNumber(word)) {
            return number;
        }
    } else if (OnlyHas(L"0123456789", word)) {
        if (const auto number = WholeNumber(word)) {
            return number;
        }
    }
    return defines != nullptr ? Define(word, *defines) : std::nullopt;
}

} // namespace

Token NextToken(const std::wstring &text, std::size_t pos) {
    while (pos < text.size() && Has(L" \t", text[pos])) {
        ++pos;
    }
    if (pos == text.size()) {
        return {0, L"", pos};
    }
    if (Has(L"\r\n", text[pos])) {
        return {3, L"", pos + 1};
    }
    if (text[pos] == L',') {
        return {4, L"", pos + 1};
    }
    if (From(text, pos, 2) == L"/*") {
        for (pos += 2; pos < text.size(); ++pos) {
            if (From(text, pos, 2) == L"*/") {
                return {2, L"", pos + 2};
            }
        }
        return {0, L"", pos < text.size() ? pos : text.size()};
    }
    if (From(text, pos, 2) == L"//") {
        while (pos < text.size() && !Has(L"\r\n", text[pos])) {
            ++pos;
        }
        return {2, L"", pos};
    }
    if (Has(L"{}", text[pos])) {
        return {text[pos] == L'{' ? 5 : 6, L"", pos + 1};
    }
    std::wstring word;
    while (pos < text.size() && Has(kWordCharacters, text[pos])) {
        word += text[pos++];
    }
    return word.empty() ? Token{0, L"", pos + 1} : Token{1, word, pos};
}

Value NextValue(const std::wstring &text, std::size_t pos, const std::wstring *defines) {
    if (pos >= text.size()) {
        return {0, std::nullopt, pos};
    }
    Token token;
    do {
        if (pos >= text.size()) {
            return {6, std::nullopt, pos};
        }
        token = NextBufferedToken(text, pos);
        pos = token.next;
        if (token.result == 0 || token.result == 6) {
            return {token.result, std::nullopt, pos};
        }
    } while (token.result != 1);
    const auto number = NumberOrName(token.word, defines);
    if (!number) {
        return {0, std::nullopt, pos};
    }
    int last = 1;
    while (pos < text.size()) {
        token = NextBufferedToken(text, pos);
        pos = token.next;
        last = token.result;
        if (last == 4 || last == 3 || last == 6) {
            return {1, number, pos};
        }
        if (last == 0) {
            break;
        }
    }
    return {last, number, pos};
}

std::optional<unsigned int> Define(const std::wstring &name, const std::wstring &defines) {
    std::size_t pos = 0;
    Token token;
    while (token.result != 1 || token.word != name) {
        if (pos >= defines.size()) {
            return std::nullopt;
        }
        token = NextBufferedToken(defines, pos);
        pos = token.next;
    }
    token = NextBufferedToken(defines, pos);
    if (token.result != 1) {
        return std::nullopt;
    }
    if (!StartsAsHex(token.word)) {
        return OnlyHas(L"0123456789", token.word) ? WholeNumber(token.word) : std::nullopt;
    }
    const std::wstring digits = token.word.substr(2);
    if (digits.empty() || digits.size() > 8 || !OnlyHas(L"0123456789abcdefABCDEF", digits)) {
        return 0;
    }
    return WholeNumber(token.word);
}

Bytes Commands(const std::wstring &text, std::size_t capacity) {
    Bytes bytes;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const Value value = NextValue(text, pos, nullptr);
        pos = value.next;
        if (value.result != 1) {
            continue;
        }
        if (*value.number >= 256) {
            bytes.result = 0;
            return bytes;
        }
        bytes.stored.push_back(static_cast<unsigned char>(*value.number));
        if (bytes.stored.size() == capacity) {
            break;
        }
    }
    bytes.result = static_cast<int>(bytes.stored.size());
    return bytes;
}

Bytes Edid(const std::wstring &text, std::size_t capacity) {
    Bytes bytes;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const Value value = NextValue(text, pos, nullptr);
        pos = value.next;
        if (value.result != 1) {
            continue;
        }
        if (*value.number > 255 || bytes.stored.size() == capacity) {
            return bytes;
        }
        bytes.stored.push_back(static_cast<unsigned char>(*value.number));
    }
    const int sum = std::accumulate(bytes.stored.begin(), bytes.stored.end(), 0);
    bytes.result = sum % 256 == 0 ? static_cast<int>(bytes.stored.size()) : 0;
    return bytes;
}

} // namespace reference
